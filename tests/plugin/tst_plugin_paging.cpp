#include "tests/standins/client_test.h"

namespace {

const QStringList PageButtons = "btnNextPage btnNextGroup btnPageFive btnPageFour btnPageThree btnPageTwo "
                                "btnPageOne btnPreGroup btnPrePage"_s.split(" "_s);

/// Name, number of jobs, clicks, pages requested by them, and the page bar at the end as `PageBar` prints it.
const std::tuple<const char*, int, QString, QString, QString> Walks[] = {
    {"two pages", 19, "btnNextPage"_s, "2"_s, "1 2*"_s},
    {"five pages", 90, "btnPageFive btnNextPage"_s, "5"_s, "1 2 3 4 5*"_s},
    {"into the next group", 91, "btnPageFive btnNextPage"_s, "5 6"_s, "< 6*"_s},
    {"into the group before", 91, "btnNextGroup btnPrePage"_s, "6 5"_s, "1 2 3 4 5* >"_s},
    {"page of a later group", 300, "btnNextGroup btnPageThree"_s, "6 8"_s, "< 6 7 8* 9 10 >"_s},
    {"last page", 290, "btnNextGroup btnNextGroup btnPageFive btnNextPage btnNextPage btnNextPage"_s,
        "6 11 15 16 17"_s, "< 16 17*"_s},
};

/// The visible buttons of each tab.
const QString Toolbars[] = {"btnRecover btnPause btnRestart btnSearch btnDelete btnFullRender"_s, {},
    "btnRecover btnPause btnDelete"_s};

} // namespace

/// Requests of job pages and their conditions, the page bar under the tables, and the toolbar of each tab.
class TestPluginPaging : public ClientTest
{
    Q_OBJECT

private slots:
    void WalksThroughThePages_data() { AddRows(Walks); }
    void WalksThroughThePages()
    {
        const auto& [name, total, clicks, requests, bar] = Row(Walks);
        m_client->Button("btnPageTwo"_s)->resize(50, 30); // wider than the others
        SignInWithJobs(MakeJobs(18), total);
        QStringList pages;
        const QStringList buttons = clicks.split(" "_s, Qt::SkipEmptyParts);
        for (const QString& click : buttons) {
            m_client->Button(click)->click();
            if (TakeJournal().isEmpty())
                continue;
            pages.append(Page().toString());
            Communication().DeliverJobs(MakeJobs(18), total);
        }
        QCOMPARE(pages.join(" "_s), requests);
        QCOMPARE(PageBar(), bar);
        const QPushButton* right = nullptr;
        for (const QString& button : PageButtons) {
            const QPushButton* next = m_client->Shows(button) ? m_client->Button(button) : nullptr;
            QVERIFY2(!next || !right || next->x() == right->x() - next->width(), qPrintable(button));
            right = next ? next : right;
        }
    }

    void FollowsTheWindowsSize()
    {
        SignInWithJobs(MakeJobs(18), 40);
        const QSize size = m_client->Tabs()->size();
        Jobs()->setColumnWidth(1, 7);
        m_client->Button("btnPageTwo"_s)->hide();
        QVERIFY(m_client->Call("ShowWindowMaximized"));
        QVERIFY(m_client->Tabs()->size() != size);
        QTRY_COMPARE_WITH_TIMEOUT(Jobs()->columnWidth(1), Jobs()->width() / 6, Patience);
        QVERIFY(m_client->Shows("btnPageTwo"_s));
        QVERIFY(m_client->Call("ShowWindowNormal"));
        QCOMPARE(m_client->Tabs()->size(), size);
    }

    void LetsNobodyEditACell()
    {
        for (const QTableWidget* table :
            {Jobs(), Tasks(), Downloads(), Find<QTableWidget>("setparent", "twtJobList")}) {
            QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
            QCOMPARE(table->contextMenuPolicy(), Qt::CustomContextMenu);
        }
    }

    void KeepsThePageOfEachListApart()
    {
        for (int i = 0; i < 40; ++i) {
            RenderCore().tasks.append({Numbered("t"_s, 40 - i)});
            RenderCore().downloads.insert(Numbered("d"_s, i), QVariantMap());
        }
        SignInWithJobs(MakeJobs(18), 100);
        m_client->Button("btnPageFour"_s)->click();
        Communication().DeliverJobs(MakeJobs(18), 100);
        emit RenderCore().SubmitListChanged();
        Communication().DeliverJobs(MakeJobs(17), 100);
        QCOMPARE(PageBar(), "1* 2 3"_s);
        m_client->Button("btnPageThree"_s)->click();
        QCOMPARE(Tasks()->rowCount(), 4);
        m_client->Tabs()->setCurrentIndex(2);
        emit RenderCore().DownloadListChanged();
        m_client->Button("btnNextPage"_s)->click();
        QCOMPARE(Downloads()->item(0, 0)->data(Qt::UserRole).toString(), "d18"_s);
        QCOMPARE(PageBar(), "1 2* 3"_s);
        m_client->Tabs()->setCurrentIndex(0);
        QCOMPARE(PageBar(), "1 2 3 4* 5 >"_s);
        QCOMPARE(Page(), QVariant(4));
    }

    void SearchesFromTheFirstPage()
    {
        SignInWithJobs(MakeJobs(18), 200);
        m_client->Button("btnNextGroup"_s)->click();
        for (const QString& name : {"sh\"ot"_s, QString()}) {
            Find<QLineEdit>("search", "lneJobName")->setText(name);
            Click("search", "btnSearchJob");
            const QVariantMap conditions
                = name.isEmpty() ? QVariantMap() : QVariantMap {{"job_name"_s, name}};
            QCOMPARE(Page(), QVariant(1));
            QCOMPARE(Conditions(), conditions);
            QCOMPARE(Sent("conditions").isValid(), !name.isEmpty());
            Communication().DeliverJobs(MakeJobs(18), 200);
            QCOMPARE(PageBar(), "1* 2 3 4 5 >"_s);
            QVERIFY(m_client->Call("RefreshJobList"));
            QCOMPARE(Conditions(), conditions);
        }
    }

    void FiltersByStatusWithoutLosingThePage()
    {
        SignInWithJobs(MakeJobs(18), 200);
        m_client->Button("btnPageTwo"_s)->click();
        emit RenderCore().SubmitListChanged();
        TakeJournal();
        QVERIFY(m_client->Call("RefreshJobList"));
        QCOMPARE(TakeJournal(), QString());
        auto* list = m_client->Form()->findChildren<QListWidget*>().at(0);
        emit list->itemClicked(list->item(0));
        QCOMPARE(m_client->Tabs()->currentIndex(), 0);
        QVERIFY(m_client->RunningTimers(1000).isEmpty());
        QCOMPARE(Page(), QVariant(1));
        QCOMPARE(Conditions(), (QVariantMap {{"status"_s, 1}}));
        emit RenderCore().DownloadListChanged();
        emit list->itemClicked(list->item(0));
        QVERIFY(m_client->RunningTimers(1000).isEmpty());
        QVERIFY(m_client->Call("RefreshJobList"));
        QCOMPARE(Page(), QVariant(2));
    }

    void IgnoresClicksBeyondTheList()
    {
        SignInWithJobs(MakeJobs(18), 200);
        const auto PagesOf = [this](const QString& clicks) {
            QStringList pages;
            const QStringList buttons = clicks.split(" "_s);
            for (const QString& click : buttons) {
                m_client->Button(click)->click();
                if (!TakeJournal().isEmpty())
                    pages.append(Sent("page").toString());
            }
            return pages.join(" "_s);
        };
        QCOMPARE(PagesOf("btnPreGroup btnNextGroup btnNextGroup btnNextGroup btnNextPage btnNextPage"_s),
            "6 11 12"_s);
        QCOMPARE(PagesOf("btnPreGroup btnPreGroup btnPreGroup btnPageThree btnPrePage"_s), "10 5 3 2"_s);
        // The list may become shorter than the page.
        QCOMPARE(PagesOf("btnPageFour"_s), "4"_s);
        Communication().DeliverJobs(MakeJobs(3), 3);
        QCOMPARE(PagesOf("btnNextPage btnPrePage btnPrePage"_s), "1"_s);
    }

    void ShowsANumberAfterSteppingBack()
    {
        for (int i = 0; i < 91; ++i)
            RenderCore().downloads.insert(Numbered("d"_s, i), QVariantMap());
        m_client->Tabs()->setCurrentIndex(2);
        emit RenderCore().DownloadListChanged();
        m_client->Button("btnNextGroup"_s)->click();
        for (const int left : {90, 20}) {
            while (RenderCore().downloads.size() > left)
                RenderCore().downloads.erase(--RenderCore().downloads.end());
            emit RenderCore().DownloadListChanged();
            QVERIFY(m_client->Shows("btnPageOne"_s));
            QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "1"_s);
        }
        m_client->Tabs()->setCurrentIndex(0);
        QVERIFY(m_client->RunningTimers(1000).isEmpty());
        emit RenderCore().DownloadListChanged();
        QCOMPARE(m_client->RunningTimers(1000).size(), 1);
        SignInWithJobs(MakeJobs(18), 91);
        m_client->Button("btnNextGroup"_s)->click();
        Communication().DeliverJobs({}, 0);
        Communication().DeliverJobs(MakeJobs(18), 90);
        QVERIFY(m_client->Button("btnPageFive"_s)->property("current").toBool());
        // Page 7 of 7 is emptied.
        Communication().DeliverJobs(MakeJobs(18), 126);
        m_client->Button("btnNextGroup"_s)->click();
        m_client->Button("btnNextPage"_s)->click();
        Communication().DeliverJobs({}, 0);
        QVERIFY(m_client->Shows("btnPageOne"_s));
        Communication().DeliverJobs(MakeJobs(18), 108);
        QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "6"_s);
    }

    void GoesToTheFirstAndLastPageByKey()
    {
        SignInWithJobs(MakeJobs(18), 200);
        for (const auto& [key, page] : {std::pair(Qt::Key_End, 12), {Qt::Key_Home, 1}}) {
            QTest::keyClick(Jobs(), key, Qt::ControlModifier);
            QCOMPARE(TakeJournal(), "GetJobList"_s);
            QCOMPARE(Sent("page"), QVariant(page));
            Communication().DeliverJobs(MakeJobs(18), 200);
        }
        QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "1"_s);
        QTest::keyClick(Jobs(), Qt::Key_End);
        QCOMPARE(TakeJournal(), QString());
    }

    void ChangesTheToolbarWithTheTab()
    {
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        for (const int tab : {2, 1, 0}) {
            all->setChecked(true);
            m_client->Tabs()->setCurrentIndex(tab);
            const QStringList buttons = Toolbars[0].split(" "_s);
            for (const QString& button : buttons)
                QCOMPARE(m_client->Shows(button), Toolbars[tab].contains(button));
            const QPushButton* anchor = m_client->Button(tab == 0 ? "btnRestart"_s : "btnPause"_s);
            QVERIFY(tab == 1 || m_client->Button("btnDelete"_s)->x() == anchor->x() + anchor->width() + 5);
            QVERIFY(!all->isChecked());
            QCOMPARE(m_client->RunningTimers(1000).size(), tab == 0 ? 0 : 1);
        }
    }

private:
    QVariant Page() const { return Sent("page"); }

    /// Visible page buttons from left to right: "<", numbers, ">"; a star marks the one with the focus.
    QString PageBar() const
    {
        const QMap<QString, QString> arrows {{"btnPreGroup"_s, "<"_s}, {"btnNextGroup"_s, ">"_s}};
        QStringList bar;
        for (const QString& name : PageButtons) {
            if (name.endsWith("Page"_s) || !m_client->Shows(name))
                continue;
            const QPushButton* button = m_client->Button(name);
            const QString text = arrows.value(name, button->text());
            bar.prepend(m_client->Form()->focusWidget() == button ? QString(text + "*"_s) : text);
        }
        return bar.join(" "_s);
    }
};

QTEST_MAIN(TestPluginPaging)
#include "tst_plugin_paging.moc"
