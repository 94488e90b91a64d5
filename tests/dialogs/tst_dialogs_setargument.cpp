#include "tests/standins/client_test.h"

namespace {

constexpr int SceneFile = 4;

QVariantMap Group(int index, int start, int end)
{
    return {{"startFrame_%1"_s.arg(index), start}, {"endFrame_%1"_s.arg(index), end}, {"width"_s, "640"_s},
        {"height"_s, QString()}, {"prerender"_s, true}};
}

QVariantList Groups(int count)
{
    QVariantList groups;
    for (int i = 0; i < count; ++i)
        groups << Group(i, i + 1, i + 10);
    return groups;
}

QVariantMap Empty()
{
    return QVariantMap {{"startFrame_0"_s, 1}, {"endFrame_0"_s, 1}, {"width"_s, QString()},
        {"height"_s, QString()}, {"prerender"_s, false}};
}

/// Name, the task's arguments, the arguments stored by "Ok", and the refusal.
const auto& Confirmations()
{
    static const std::tuple<const char*, QVariantList, QVariantList, QString> rows[] = {
        {"as they were", Groups(3), Groups(3), {}},
        {"more than fit", Groups(20), Groups(15), {}},
        {"longest and last", {Group(0, 98999, 99999)}, {Group(0, 98999, 99999)}, {}},
        {"no group at all", {}, {Empty()}, {}},
        {"reversed", {Group(0, 1, 1001), Group(1, 11, 10)}, {}, "Start frame must be less than end frame!"_s},
        {"too long", {Group(0, 1, 1001), Group(1, 1, 1002)}, {}, "Can not submit more than 1000 frames"_s},
    };
    return rows;
}

} // namespace

/// The set-argument dialog, opened on a local task from the window's menu.
class TestSetArgument : public ClientTest
{
    Q_OBJECT

private slots:
    void init()
    {
        ClientTest::init();
        RenderCore().tasks = {{"task2"_s, "a/<b>two.ma"_s}, {"task1"_s, "b/one.ma"_s}};
        emit RenderCore().SubmitListChanged();
        Tasks()->setCurrentCell(1, 0);
    }

    void StoresOrRefusesTheArguments_data() { AddRows(Confirmations()); }
    void StoresOrRefusesTheArguments()
    {
        const auto& [name, arguments, stored, refusal] = Row(Confirmations());
        bool isOpen = true;
        OpenOn(arguments, [&] {
            Click("setargument", "btnOk");
            isOpen = Form("setargument")->isVisible();
        });
        QCOMPARE(isOpen, !refusal.isEmpty());
        QCOMPARE(TakeJournal(), isOpen ? "ShowMessage"_s : "SetArgument task1"_s);
        QCOMPARE(RenderCore().setArguments, stored);
        QCOMPARE(Arguments()->data(Qt::UserRole).toList(), isOpen ? arguments : stored);
        if (isOpen)
            QCOMPARE(MessageBox().messages, QStringList {"2|QuillStar Client||%1|Ok,|1"_s.arg(refusal)});
    }

    void TakesTheUsersInput()
    {
        Tasks()->setCurrentCell(0, 0);
        OpenOn(Groups(2), [this] {
            QCOMPARE(Find<QLabel>("setargument", "lblJobName")->text(), "<b>two"_s);
            QCOMPARE(Find<QLabel>("setargument", "lblJobName")->textFormat(), Qt::PlainText);
            Spin("spbGroup")->setValue(1);
            Spin("spbEndFrame_0")->setValue(50);
            for (const char* field : {"lneImageWidth", "lneImageHeight"}) {
                Find<QLineEdit>("setargument", field)->clear();
                QTest::keyClicks(Find<QLineEdit>("setargument", field), "3x-2"_s);
            }
            Find<QCheckBox>("setargument", "chkPrerender")->setChecked(false);
            Click("setargument", "btnOk");
        });
        const QVariantMap typed {{"startFrame_0"_s, 1}, {"endFrame_0"_s, 50}, {"width"_s, "32"_s},
            {"height"_s, "32"_s}, {"prerender"_s, false}};
        QCOMPARE(RenderCore().setArguments, QVariantList {typed});
        QCOMPARE(TakeJournal(), "SetArgument task2"_s);
        OpenOn(Groups(1), [this] {
            Click("setargument", "btnClose");
            QVERIFY(!Form("setargument")->isVisible());
        });
        QCOMPARE(TakeJournal(), QString());
    }

    void StacksTheRowsOfItsGroups()
    {
        for (const int groups : {1, 15, 3}) {
            OpenOn(Groups(groups), [this, groups] {
                int bottom = 0;
                const auto Bottom = [](const QWidget* widget) { return widget->y() + widget->height(); };
                for (int i = 0; i < 15; ++i) {
                    const auto* row = Form("setargument")->findChild<QWidget*>("wgtFrameRange_%1"_s.arg(i));
                    QCOMPARE(row->isVisible(), i < groups);
                    QVERIFY(i == 0 || !row->isVisible() || row->y() == bottom);
                    bottom = row->isVisible() ? Bottom(row) : bottom;
                }
                int gap = 0;
                for (const char* below : {"wgtImageSize", "chkPrerender", "btnOk"}) {
                    QCOMPARE(Find<QWidget>("setargument", below)->y(), bottom + gap);
                    bottom = Bottom(Find<QWidget>("setargument", below));
                    gap = 20;
                }
                QCOMPARE(Form("setargument")->height(), bottom + gap);
                Click("setargument", "btnClose");
            });
        }
    }

    void LeavesAnotherTaskInTheRowAlone()
    {
        OpenOn(Groups(1), [this] {
            Tasks()->item(1, 0)->setData(Qt::UserRole, "Task1"_s);
            Click("setargument", "btnOk");
        });
        OpenOn(Groups(1), [this] {
            Tasks()->setRowCount(0);
            Click("setargument", "btnOk");
        });
        QCOMPARE(TakeJournal(), QString());
    }

    void SurvivesItsEndWhileOpen()
    {
        OpenOn(Groups(1), [this] { delete Form("setargument"); });
        QCOMPARE(TakeJournal(), QString());
        init();
        MessageBox().whileOpen = [this] { m_client->Service()->Hide(1); };
        OpenOn({Group(0, 2, 1)}, [this] { Click("setargument", "btnOk"); });
        QVERIFY(!m_client->Window());
    }

    void ReturnsWhenItIsClosedWhileItAppears()
    {
        struct : QObject
        {
            bool eventFilter(QObject* form, QEvent* event) override
            {
                if (event->type() != QEvent::Show)
                    return false;
                form->removeEventFilter(this);
                static_cast<QWidget*>(form)->hide();
                return false;
            }
        } closer;
        QWidget* form = Form("setargument");
        form->installEventFilter(&closer);
        Arguments()->setData(Qt::UserRole, Groups(1));
        m_client->Entry("Set argument")->trigger();
        QVERIFY(!form->windowHandle()->isVisible() && !QApplication::activeModalWidget());
    }

private:
    QSpinBox* Spin(const char* name) const { return Find<QSpinBox>("setargument", name); }
    QTableWidgetItem* Arguments() const { return Tasks()->item(Tasks()->currentRow(), SceneFile); }

    /// Gives the current task arguments, opens the dialog on it and runs the action while the dialog is open.
    template <class Action>
    void OpenOn(const QVariantList& arguments, Action action) const
    {
        TakeJournal();
        Arguments()->setData(Qt::UserRole, arguments);
        WhileOpen("setargument", action);
        m_client->Entry("Set argument")->trigger();
    }
};

QTEST_MAIN(TestSetArgument)
#include "tst_dialogs_setargument.moc"
