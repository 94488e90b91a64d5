#include "tests/standins/client_test.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>

namespace {

const QStringList PageButtons = "btnNextPage btnNextGroup btnPageFive btnPageFour btnPageThree btnPageTwo "
                                "btnPageOne btnPreGroup btnPrePage"_s.split(" "_s);

const QStringList Overlays = PageButtons
    + "chkAll btnDelete btnFullRender btnPause btnSearch btnRecover btnRestart btnStop"_s.split(" "_s);

/// Name, number of jobs, clicks, pages requested by them, and the page bar at the end as `PageBar` prints it.
const std::tuple<const char*, int, QString, QString, QString> Walks[] = {
    {"empty", 0, {}, {}, "1*"_s},
    {"one page", 18, "btnNextPage btnPrePage"_s, {}, "1*"_s},
    {"two pages", 19, "btnNextPage"_s, "2"_s, "1 2*"_s},
    {"five pages", 90, "btnPageFive btnNextPage"_s, "5"_s, "1 2 3 4 5*"_s},
    {"six pages", 91, {}, {}, "1* 2 3 4 5 >"_s},
    {"into the next group", 91, "btnPageFive btnNextPage"_s, "5 6"_s, "< 6*"_s},
    {"into the group before", 91, "btnNextGroup btnPrePage"_s, "6 5"_s, "1 2 3 4 5* >"_s},
    {"previous group", 300, "btnNextGroup btnNextGroup btnPreGroup"_s, "6 11 10"_s, "< 6 7 8 9 10* >"_s},
    {"page of a later group", 300, "btnNextGroup btnPageThree"_s, "6 8"_s, "< 6 7 8* 9 10 >"_s},
    {"last page", 290, "btnNextGroup btnNextGroup btnPageFive btnNextPage btnNextPage btnNextPage"_s,
        "6 11 15 16 17"_s, "< 16 17*"_s},
};

/// Name, tab, visible buttons, and the button beside btnDelete.
const std::tuple<const char*, int, QString, QString> Toolbars[] = {
    {"jobs", 0, "btnRecover btnPause btnRestart btnSearch btnDelete btnFullRender"_s, "btnRestart"_s},
    {"local tasks", 1, {}, {}},
    {"downloads", 2, "btnRecover btnPause btnDelete"_s, "btnPause"_s},
};

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
        SignInWithJobs(MakeJobs(18), total);
        QStringList pages;
        for (const QString& click : clicks.split(" "_s, Qt::SkipEmptyParts)) {
            m_client->Button(click)->click();
            if (TakeJournal().isEmpty())
                continue;
            pages.append(Page().toString());
            Communication().DeliverJobs(MakeJobs(18), total);
        }
        QCOMPARE(pages.join(" "_s), requests);
        QCOMPARE(PageBar(), bar);
        QVERIFY(m_client->Shows("btnNextPage"_s) && m_client->Shows("btnPrePage"_s));
    }

    void LaysTheBarOutFromTheRight()
    {
        m_client->Tabs()->raise();
        m_client->SignIn();
        QCOMPARE(OnTop(), Overlays);
        const QRect anchor = m_client->Button("btnNextPage"_s)->geometry();
        const int top = m_client->Button("btnPageOne"_s)->y();
        for (const int total : {200, 40, 200}) {
            Communication().DeliverJobs(MakeJobs(18), total);
            int left = anchor.x() + anchor.width();
            for (const QString& name : PageButtons) {
                const QPushButton* button = m_client->Button(name);
                if (m_client->Shows(name)) {
                    QCOMPARE(button->x(), left - button->width());
                    left = button->x();
                }
            }
        }
        QCOMPARE(m_client->Button("btnNextPage"_s)->geometry(), anchor);
        QCOMPARE(m_client->Button("btnPageOne"_s)->y(), top);
        QVERIFY(m_client->logger.lines.contains("total: 40|128|default||-1"_s));
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
        QCOMPARE(Jobs()->rowCount(), 17);
        QCOMPARE(PageBar(), "1* 2 3"_s);
        m_client->Button("btnPageThree"_s)->click();
        QCOMPARE(Tasks()->rowCount(), 4);
        QCOMPARE(PageBar(), "1 2 3*"_s);
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
        QVERIFY(m_client->Call("RefreshJobList"));
        QCOMPARE(Page(), QVariant(2));
    }

    void ChangesTheToolbarWithTheTab_data() { AddRows(Toolbars); }
    void ChangesTheToolbarWithTheTab()
    {
        const auto& [name, tab, shown, anchor] = Row(Toolbars);
        m_client->Tabs()->setCurrentIndex(tab == 1 ? 0 : 1);
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        all->setChecked(true);
        m_client->Button("btnStop"_s)->show();
        m_client->Tabs()->raise();
        QPushButton* deleteButton = m_client->Button("btnDelete"_s);
        const QRect before = deleteButton->geometry();
        m_client->Tabs()->setCurrentIndex(tab);

        for (const QString& button : std::get<2>(Toolbars[0]).split(" "_s))
            QCOMPARE(m_client->Shows(button), shown.contains(button));
        QVERIFY(m_client->Shows("btnStop"_s));
        QVERIFY(!all->isChecked());
        QCOMPARE(m_client->RunningTimers(1000).size(), tab == 0 ? 0 : 1);
        QVERIFY(m_client->logger.lines.contains("index: %1|128|default||-1"_s.arg(tab)));
        QCOMPARE(OnTop(), Overlays);
        if (anchor.isEmpty())
            return;
        const QRect place = m_client->Button(anchor)->geometry();
        const int left = place.x() + place.width() + 5;
        QCOMPARE(deleteButton->geometry(), before.translated(left - before.x(), 0));
        deleteButton->move(0, 0);
        QVERIFY(m_client->Call("AdjustPageButtons"));
        QCOMPARE(deleteButton->x(), left);
    }

private:
    /// The form's topmost widgets in their stacking order, as many as there are overlays.
    QStringList OnTop() const
    {
        QStringList names;
        for (const QObject* widget : m_client->Form()->children())
            names.append(widget->objectName());
        return names.mid(names.size() - Overlays.size());
    }

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
