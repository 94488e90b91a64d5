#include "tests/dialogs/dialog_fixture.h"

#include "dialogs/vtr_setargument.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>

namespace {

constexpr int ArgumentColumn = 4;
constexpr int RowHeight = 30;

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

struct Confirmation
{
    const char* name;
    QVariantList arguments;
    QVariantList stored;
};
const QVariantMap empty {{"startFrame_0"_s, 1}, {"endFrame_0"_s, 1}, {"width"_s, QString()},
    {"height"_s, QString()}, {"prerender"_s, false}};
const Confirmation confirmations[] = {
    {"as they were", Groups(3), Groups(3)},
    {"more than fit", Groups(20), Groups(15)},
    {"longest", {Group(0, 1, 1001)}, {Group(0, 1, 1001)}},
    {"no group at all", {}, {empty}},
    {"not a map", {"rubbish"_s}, {empty}},
};

struct Refusal
{
    const char* name;
    int start;
    int end;
    QString message;
};
const Refusal refusals[] = {{"reversed", 11, 10, "Start frame must be less than end frame!"_s},
    {"too long", 1, 1002, "Can not submit more than 1000 frames"_s}};

} // namespace

class TestSetArgument : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_table = std::make_unique<QTableWidget>(2, 6);
        for (int row = 0; row < 2; ++row) {
            auto* name = new QTableWidgetItem("<b>scene %1</b>"_s.arg(row));
            name->setData(Qt::UserRole, "task%1"_s.arg(row));
            m_table->setItem(row, 0, name);
            m_table->setItem(row, ArgumentColumn, new QTableWidgetItem);
        }
        m_form.reset(NewForm("com.vtr.setargument"_s, {}));
        m_dialog = std::make_unique<VTSetArgument>(m_form.get(), m_table.get());
        m_dialog->SetServices(m_services.siblings);
        m_dialog->InitWidgets();
        m_services.messageBox.messages.clear();
    }

    void OpensOnTheCurrentTask()
    {
        bool opened = false;
        QVariantMap first = Group(0, 1, 10);
        first.insert("width"_s, "320"_s);
        first.insert("prerender"_s, false);
        // The size and the switch are the last group's.
        Open(1, {first, Group(1, 2, 11)}, [&] {
            opened = true;
            QCOMPARE(m_form->windowTitle(), "task1"_s);
            QCOMPARE(Find<QLabel>(m_form, "lblJobName")->text(), "<b>scene 1</b>"_s);
            QCOMPARE(Spin("spbGroup")->value(), 2);
            QCOMPARE(Spin("spbStartFrame_1")->value(), 2);
            QCOMPARE(Spin("spbEndFrame_1")->value(), 11);
            QCOMPARE(Find<QLineEdit>(m_form, "lneImageWidth")->text(), "640"_s);
            QVERIFY(Find<QCheckBox>(m_form, "chkPrerender")->isChecked());
        });
        QVERIFY(opened);
        m_table->setCurrentItem(nullptr);
        m_dialog->TriggerSetArgument();
        QVERIFY(!m_form->isVisible());
    }

    void ConfirmedArgumentsGoToTheTableAndOut_data() { AddRows(confirmations); }
    void ConfirmedArgumentsGoToTheTableAndOut()
    {
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(0, Row(confirmations).arguments, [this] { Ok()->click(); });
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.first().at(0).toString(), "task0"_s);
        QCOMPARE(spy.first().at(1).toList(), Row(confirmations).stored);
        QCOMPARE(Stored(), Row(confirmations).stored);
    }

    void RefusedRangeKeepsTheDialogOpen_data() { AddRows(refusals); }
    void RefusedRangeKeepsTheDialogOpen()
    {
        const QVariantList arguments {Group(0, 1, 1001), Group(1, Row(refusals).start, Row(refusals).end)};
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(0, arguments, [this] {
            Ok()->click();
            QVERIFY(m_form->isVisible());
        });
        QCOMPARE(m_services.messageBox.messages.size(), 1);
        QVERIFY(m_services.messageBox.messages.first().contains(Row(refusals).message));
        QCOMPARE(spy.size(), 0);
        QCOMPARE(Stored(), arguments);
    }

    void AnotherTaskInTheRowIsLeftAlone()
    {
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(1, Groups(1), [this] {
            m_table->item(1, 0)->setData(Qt::UserRole, "Task1"_s);
            Ok()->click();
            QVERIFY(!m_form->isVisible());
        });
        Open(1, Groups(1), [this] {
            m_table->setRowCount(0);
            Ok()->click();
            QVERIFY(!m_form->isVisible());
        });
        QCOMPARE(spy.size(), 0);
        QVERIFY(m_services.messageBox.messages.isEmpty());
    }

    void RowsFollowTheNumberOfGroups()
    {
        const auto Range
            = [this](int index) { return m_form->findChild<QWidget*>("wgtFrameRange_%1"_s.arg(index)); };
        const auto* size = Find<QWidget>(m_form, "wgtImageSize");
        Spin("spbGroup")->setValue(2);
        const int height = m_form->height();
        const int top = size->y();
        Spin("spbGroup")->setValue(3);
        QVERIFY(!Range(2)->isHidden() && Range(3)->isHidden());
        QCOMPARE(Range(0)->y(), 0);
        QCOMPARE(Range(2)->y(), Range(1)->y() + RowHeight);
        QCOMPARE(size->y(), top + RowHeight);
        QCOMPARE(m_form->height(), height + RowHeight);
        QCOMPARE(m_form->height(), Ok()->geometry().bottom() + 1 + 20);
        m_dialog->AddFrameRange(1);
        QVERIFY(Range(1)->isHidden());
        QCOMPARE(m_form->height(), height - RowHeight);
    }

    void DialogThatGoesWhileOpenHarmsNothing()
    {
        Open(0, Groups(1), [this] { m_form.reset(); });
        CallEverySlot(m_dialog.get());
        QVERIFY(m_services.messageBox.messages.isEmpty());
    }

private:
    QSpinBox* Spin(const char* name) const { return Find<QSpinBox>(m_form, name); }
    QPushButton* Ok() const { return Find<QPushButton>(m_form, "btnOk"); }
    QVariantList Stored() const { return m_table->item(0, ArgumentColumn)->data(Qt::UserRole).toList(); }

    /// Runs the dialog on a task and does something while it is open.
    template <typename Function>
    void Open(int row, const QVariantList& arguments, Function whileOpen)
    {
        m_table->item(row, ArgumentColumn)->setData(Qt::UserRole, arguments);
        m_table->setCurrentCell(row, 0);
        QTimer::singleShot(0, m_dialog.get(), [&] {
            whileOpen();
            if (m_form)
                m_form->close();
        });
        m_dialog->TriggerSetArgument();
    }

    ServicesFixture m_services;
    std::unique_ptr<QTableWidget> m_table;
    std::unique_ptr<QWidget> m_form;
    std::unique_ptr<VTSetArgument> m_dialog;
};

QTEST_MAIN(TestSetArgument)
#include "tst_dialogs_setargument.moc"
