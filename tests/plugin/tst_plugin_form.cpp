#include "tests/standins/client_test.h"

namespace {

const char* const Overlays[] = {"btnNextPage", "btnNextGroup", "btnPageFive", "btnPageFour", "btnPageThree",
    "btnPageTwo", "btnPageOne", "btnPreGroup", "btnPrePage", "chkAll", "btnDelete", "btnFullRender",
    "btnPause", "btnSearch", "btnRecover", "btnRestart", "btnStop"};

} // namespace

/// The looks of the main form: its icon, its layers, the places and sizes of its widgets, and the cells of its tables.
class TestPluginForm : public ClientTest
{
    Q_OBJECT

private slots:
    void ShowsTheIconOfTheLoadersSkin()
    {
        m_client = std::make_unique<Client>();
        m_client->Start();
        QCOMPARE(m_client->Initialize(), 0);
        QVERIFY(IconSizes("qsclient").isEmpty());
        m_client->uiLoader.skin = "plum"_s;
        QVariant state;
        QCOMPARE(m_client->Service()->Show(state, {}), 0);
        QCOMPARE(IconSizes("qsclient"), QList<QSize> {QSize(1, 1)});
        QVERIFY(IconSizes("search").isEmpty());
        emit m_client->uiLoader.SkinChanged("plum"_s);
        for (const char* form : {"setargument", "setparent", "search"})
            QCOMPARE(IconSizes(form), QList<QSize> {QSize(1, 1)});
    }

    void ShowsWhichPageOfThePanelIsOpen()
    {
        emit m_client->uiLoader.SkinChanged("plum"_s);
        m_client->SignIn();
        auto* pages = m_client->Form()->findChild<QToolBox*>();
        for (const int open : {0, 1, 0}) {
            pages->setCurrentIndex(open);
            // The test's skin has a picture for the open page only.
            for (const int page : {0, 1})
                QCOMPARE(pages->itemIcon(page).availableSizes().isEmpty(), page != open);
        }
    }

    void IsLaidOutByItsSkin()
    {
        const QStringList& layouts = m_client->uiLoader.layouts;
        QCOMPARE(layouts.value(0), ":/teal/com.vtr.qsclient.ini"_s);
        m_client->Form()->resize(1234, 777);
        QVERIFY(layouts.last().endsWith(" by :/teal/com.vtr.qsclient.ini"_s));
        const int count = layouts.size();
        Form("search")->resize(333, 333);
        m_client->Form()->move(3, 4);
        QCoreApplication::processEvents();
        QCOMPARE(layouts.size(), count);
    }

    void RaisesWhatLiesOverTheTables()
    {
        for (const bool bySignIn : {true, false}) {
            for (const char* name : Overlays)
                m_client->Find<QWidget>(QLatin1String(name))->lower();
            if (bySignIn)
                m_client->SignIn();
            else
                m_client->Tabs()->setCurrentIndex(1);
            const QObjectList& layers = m_client->Form()->children();
            for (const char* name : Overlays)
                QVERIFY2(layers.indexOf(m_client->Find<QWidget>(QLatin1String(name)))
                        > layers.indexOf(m_client->Tabs()),
                    name);
        }
    }

    void AlignsItsCells()
    {
        RenderCore().tasks = {{"a"_s}};
        RenderCore().downloads = {{"b"_s, QVariantMap()}};
        emit RenderCore().SubmitListChanged();
        m_client->Tabs()->setCurrentIndex(2);
        SignInWithJobs(MakeJobs(1), 1);
        QCOMPARE(Alignments(Jobs(), 0), "ccc-cc"_s);
        QCOMPARE(Alignments(Tasks(), 0), "--c-cc"_s);
        QCOMPARE(Alignments(Downloads(), 0), "----cc"_s);
    }

    void PutsItsWidgetsWhereTheNewSizeLeavesThem()
    {
        SignInWithJobs(MakeJobs(18), 40);
        const QSize size = m_client->Tabs()->size();
        for (const bool maximizes : {true, false}) {
            Jobs()->setColumnWidth(1, 7);
            m_client->Button("btnPageTwo"_s)->hide();
            m_client->Button("btnDelete"_s)->move(0, 0);
            QVERIFY(m_client->Call(maximizes ? "ShowWindowMaximized" : "ShowWindowNormal"));
            QCOMPARE(m_client->Form()->isMaximized(), maximizes);
            QCOMPARE(m_client->Tabs()->size() == size, !maximizes);
            QCOMPARE(m_client->Shows("btnSystemMaxmax"_s), maximizes);
            QCOMPARE(m_client->Shows("btnSystemMaxnormal"_s), !maximizes);
            QTRY_COMPARE_WITH_TIMEOUT(Jobs()->columnWidth(1), Jobs()->width() / 6, Patience);
            QVERIFY(m_client->Shows("btnPageTwo"_s));
            const QPushButton* restart = m_client->Button("btnRestart"_s);
            QCOMPARE(m_client->Button("btnDelete"_s)->x(), restart->x() + restart->width() + 5);
        }
    }

    void MarksTheNumberOfThePage()
    {
        m_client->Form()->setStyleSheet("QPushButton[current=\"true\"] { color: #ff0000; }"_s);
        SignInWithJobs(MakeJobs(18), 40);
        m_client->Button("btnPageTwo"_s)->click();
        Jobs()->setFocus();
        Communication().DeliverJobs(MakeJobs(18), 40);
        QVERIFY(!m_client->Button("btnPageOne"_s)->property("current").toBool());
        QVERIFY(m_client->Button("btnPageTwo"_s)->property("current").toBool());
        for (const char* page : {"btnPageOne", "btnPageTwo"})
            QCOMPARE(m_client->Button(QLatin1String(page))->palette().color(QPalette::ButtonText) == Qt::red,
                QByteArray(page) == "btnPageTwo");
        QCOMPARE(m_client->Form()->focusWidget(), m_client->Button("btnPageTwo"_s));
        // Nobody has clicked since, so the focus stays where it is.
        Jobs()->setFocus();
        Communication().DeliverJobs(MakeJobs(18), 40);
        QCOMPARE(m_client->Form()->focusWidget(), Jobs());
        // A click that was not answered does not move the focus later.
        m_client->Button("btnPageTwo"_s)->click();
        emit Communication().JobListResponse(500, {});
        Jobs()->setFocus();
        Communication().DeliverJobs(MakeJobs(18), 40);
        QCOMPARE(m_client->Form()->focusWidget(), Jobs());
    }

    void TurnsAPageToItsTop()
    {
        for (int i = 0; i < 40; ++i)
            RenderCore().tasks.append({Numbered("t"_s, i)});
        emit RenderCore().SubmitListChanged();
        Tasks()->setFixedHeight(120);
        QCoreApplication::processEvents();
        Tasks()->scrollToBottom();
        QVERIFY(Tasks()->rowAt(0) > 0);
        m_client->Button("btnPageTwo"_s)->click();
        QCoreApplication::processEvents();
        QCOMPARE(Tasks()->rowAt(0), 0);
    }

    void LendsItsCellsAndBars()
    {
        QTableWidgetItem item;
        QWidget* window = m_client->Window();
        for (const bool isCheckable : {true, false}) {
            item.setData(Qt::CheckStateRole, QVariant());
            QVERIFY(QMetaObject::invokeMethod(window, "SetItemAttribute", Q_ARG(QTableWidgetItem*, &item),
                Q_ARG(QVariant, 5), Q_ARG(QString, "<b>tip"_s), Q_ARG(bool, isCheckable)));
            QCOMPARE(item.data(Qt::CheckStateRole), isCheckable ? QVariant(int(Qt::Unchecked)) : QVariant());
        }
        QCOMPARE(item.data(Qt::UserRole), QVariant(5));
        QVERIFY(item.toolTip().contains("&lt;b&gt;tip"_s));
        QCOMPARE(item.textAlignment(), int(Qt::AlignCenter));

        const std::tuple<int, int, QString> bars[] = {{0, 0, "(255,99,79)"_s}, {49, 49, "(255,99,79)"_s},
            {50, 50, "(255,161,94)"_s}, {99, 99, "(255,161,94)"_s}, {100, 100, "(125,180,75)"_s},
            {101, -1, "(125,180,75)"_s}, {150, -1, {}}};
        for (const auto& [percent, value, color] : bars) {
            QProgressBar* bar = nullptr;
            QVERIFY(QMetaObject::invokeMethod(
                window, "GetANewProgressBar", Q_RETURN_ARG(QProgressBar*, bar), Q_ARG(int, percent)));
            const std::unique_ptr<QProgressBar> owned(bar);
            QCOMPARE(bar->value(), value);
            QVERIFY(bar->isTextVisible() && bar->maximum() == 100);
            QCOMPARE(bar->styleSheet().isEmpty(), color.isEmpty());
            QVERIFY(bar->styleSheet().contains(color));
        }
    }

private:
    QList<QSize> IconSizes(const char* form) const { return Form(form)->windowIcon().availableSizes(); }
};

QTEST_MAIN(TestPluginForm)
#include "tst_plugin_form.moc"
