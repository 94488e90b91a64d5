#include "dialog_fixture.h"

#include "vtr_setargument.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

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
        BuildForm();
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
            QCOMPARE(m_form->findChild<QLabel*>("lblJobName"_s)->text(), "<b>scene 1</b>"_s);
            QCOMPARE(Spin("spbGroup")->value(), 2);
            QCOMPARE(Spin("spbStartFrame_1")->value(), 2);
            QCOMPARE(Spin("spbEndFrame_1")->value(), 11);
            QCOMPARE(m_form->findChild<QLineEdit*>("lneImageWidth"_s)->text(), "640"_s);
            QVERIFY(m_form->findChild<QCheckBox*>("chkPrerender"_s)->isChecked());
        });
        QVERIFY(opened);

        m_table->setCurrentItem(nullptr);
        m_dialog->TriggerSetArgument();
        QVERIFY(!m_form->isVisible());
    }

    void ConfirmedArgumentsGoToTheTableAndOut_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QVariantList>("stored");

        QTest::newRow("as they were") << Groups(3) << Groups(3);
        QTest::newRow("more than fit") << Groups(20) << Groups(15);
        const QVariantMap empty {{"startFrame_0"_s, 1}, {"endFrame_0"_s, 1}, {"width"_s, QString()},
            {"height"_s, QString()}, {"prerender"_s, false}};
        QTest::newRow("no group at all") << QVariantList() << QVariantList {empty};
        QTest::newRow("not a map") << QVariantList {"rubbish"_s} << QVariantList {empty};
    }

    void ConfirmedArgumentsGoToTheTableAndOut()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(QVariantList, stored);
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(0, arguments, [this] { Ok()->click(); });
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.first().at(0).toString(), "task0"_s);
        QCOMPARE(spy.first().at(1).toList(), stored);
        QCOMPARE(m_table->item(0, ArgumentColumn)->data(Qt::UserRole).toList(), stored);
    }

    void RefusedRangeKeepsTheDialogOpen_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("message");

        QTest::newRow("reversed") << 11 << 10 << "Start frame must be less than end frame!"_s;
        QTest::newRow("too long") << 1 << 1002 << "Can not submit more than 1000 frames"_s;
    }

    void RefusedRangeKeepsTheDialogOpen()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        const QVariantList arguments {Group(0, 1, 1001), Group(1, start, end)};
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(0, arguments, [this] {
            Ok()->click();
            QVERIFY(m_form->isVisible());
        });
        QFETCH(QString, message);
        QCOMPARE(m_services.messageBox.messages.size(), 1);
        QVERIFY(m_services.messageBox.messages.first().contains(message));
        QCOMPARE(spy.size(), 0);
        QCOMPARE(m_table->item(0, ArgumentColumn)->data(Qt::UserRole).toList(), arguments);
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
        const auto Row
            = [this](int index) { return m_form->findChild<QWidget*>("wgtFrameRange_%1"_s.arg(index)); };
        Spin("spbGroup")->setValue(2);
        const int height = m_form->height();
        const int size = m_form->findChild<QWidget*>("wgtImageSize"_s)->y();
        Spin("spbGroup")->setValue(3);
        QVERIFY(!Row(2)->isHidden());
        QVERIFY(Row(3)->isHidden());
        QCOMPARE(Row(2)->y(), Row(1)->y() + RowHeight);
        QCOMPARE(Row(0)->y(), 50);
        QCOMPARE(m_form->findChild<QWidget*>("wgtImageSize"_s)->y(), size + RowHeight);
        QCOMPARE(m_form->height(), height + RowHeight);
        QCOMPARE(m_form->height(), Ok()->geometry().bottom() + 1 + 20);
        m_dialog->AddFrameRange(1);
        QVERIFY(Row(1)->isHidden());
        QCOMPARE(m_form->height(), height - RowHeight);
    }

    void DialogThatGoesWhileOpenHarmsNothing()
    {
        Open(0, Groups(1), [this] { m_form.reset(); });
        m_dialog->TriggerSetArgument();
        m_dialog->TriggerArgumentOk();
        m_dialog->AddFrameRange(2);
        m_dialog->ChangeLanguage();
        QVERIFY(m_services.messageBox.messages.isEmpty());
    }

    void cleanup()
    {
        m_dialog.reset();
        m_form.reset();
    }

private:
    void BuildForm()
    {
        m_form = std::make_unique<QDialog>();
        QWidget* form = m_form.get();
        for (const char* name : {"btnClose", "btnOk"})
            AddTo<QPushButton>(form, QLatin1String(name));
        for (const char* name : {"lblJobName", "lblFrameRange", "lblImageSize", "lblGroup"})
            AddTo<QLabel>(form, QLatin1String(name));
        AddTo<QSpinBox>(form, "spbGroup"_s);
        AddTo<QWidget>(form, "wgtImageSize"_s)->setGeometry(10, 0, 100, RowHeight);
        AddTo<QCheckBox>(form, "chkPrerender"_s);
        for (const char* name : {"lneImageWidth", "lneImageHeight"})
            AddTo<QLineEdit>(form, QLatin1String(name));
        for (int i = 0; i < 15; ++i) {
            auto* row = AddTo<QWidget>(form, "wgtFrameRange_%1"_s.arg(i));
            row->setGeometry(10, 50, 300, RowHeight);
            AddTo<QSpinBox>(row, "spbStartFrame_%1"_s.arg(i));
            AddTo<QSpinBox>(row, "spbEndFrame_%1"_s.arg(i));
            AddTo<QLabel>(row, "lblFrameRange_%1"_s.arg(i));
        }
    }

    QSpinBox* Spin(const char* name) const { return m_form->findChild<QSpinBox*>(QLatin1String(name)); }
    QPushButton* Ok() const { return m_form->findChild<QPushButton*>("btnOk"_s); }

    /// Runs the dialog on a task and does something while it is open.
    template <typename Function>
    void Open(int row, const QVariantList& arguments, Function whileOpen)
    {
        m_table->item(row, ArgumentColumn)->setData(Qt::UserRole, arguments);
        m_table->setCurrentCell(row, 0);
        Soon(m_dialog.get(), [&] {
            whileOpen();
            if (m_form)
                m_form->close();
        });
        m_dialog->TriggerSetArgument();
    }

    ServicesFixture m_services;
    std::unique_ptr<QTableWidget> m_table;
    std::unique_ptr<QDialog> m_form;
    std::unique_ptr<VTSetArgument> m_dialog;
};

QTEST_MAIN(TestSetArgument)
#include "tst_dialogs_setargument.moc"
