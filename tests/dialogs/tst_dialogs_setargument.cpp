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
    return {{QStringLiteral("startFrame_%1").arg(index), start},
        {QStringLiteral("endFrame_%1").arg(index), end}, {QStringLiteral("width"), QStringLiteral("640")},
        {QStringLiteral("height"), QString()}, {QStringLiteral("prerender"), true}};
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
            auto* name = new QTableWidgetItem(QStringLiteral("<b>scene %1</b>").arg(row));
            name->setData(Qt::UserRole, QStringLiteral("task%1").arg(row));
            m_table->setItem(row, 0, name);
            m_table->setItem(row, ArgumentColumn, new QTableWidgetItem);
        }
        BuildForm();
        m_dialog = std::make_unique<VTSetArgument>(m_form.get(), m_table.get());
        m_dialog->SetServices(m_services.siblings);
        m_dialog->InitWidgets();
        m_services.messageBox.shown.clear();
    }

    void OpensOnTheCurrentTask()
    {
        bool opened = false;
        Open(1, Groups(2), [&] {
            opened = true;
            QCOMPARE(m_form->windowTitle(), QStringLiteral("task1"));
            QCOMPARE(m_form->findChild<QLabel*>(QStringLiteral("lblJobName"))->text(),
                QStringLiteral("<b>scene 1</b>"));
            QCOMPARE(Spin("spbGroup")->value(), 2);
            QCOMPARE(Spin("spbStartFrame_1")->value(), 2);
            QCOMPARE(Spin("spbEndFrame_1")->value(), 11);
            QCOMPARE(m_form->findChild<QLineEdit*>(QStringLiteral("lneImageWidth"))->text(),
                QStringLiteral("640"));
            QVERIFY(m_form->findChild<QCheckBox*>(QStringLiteral("chkPrerender"))->isChecked());
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
        const QVariantMap empty {{QStringLiteral("startFrame_0"), 1}, {QStringLiteral("endFrame_0"), 1},
            {QStringLiteral("width"), QString()}, {QStringLiteral("height"), QString()},
            {QStringLiteral("prerender"), false}};
        QTest::newRow("no group at all") << QVariantList() << QVariantList {empty};
        QTest::newRow("not a map") << QVariantList {QStringLiteral("rubbish")} << QVariantList {empty};
    }

    void ConfirmedArgumentsGoToTheTableAndOut()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(QVariantList, stored);
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(0, arguments, [this] { Ok()->click(); });
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.first().at(0).toString(), QStringLiteral("task0"));
        QCOMPARE(spy.first().at(1).toList(), stored);
        QCOMPARE(m_table->item(0, ArgumentColumn)->data(Qt::UserRole).toList(), stored);
    }

    void RefusedRangeKeepsTheDialogOpen_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("message");

        QTest::newRow("reversed") << 11 << 10 << QStringLiteral("Start frame must be less than end frame!");
        QTest::newRow("too long") << 1 << 1002 << QStringLiteral("Can not submit more than 1000 frames");
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
        QTEST(m_services.messageBox.shown.join(QLatin1Char('|')), "message");
        QCOMPARE(spy.size(), 0);
        QCOMPARE(m_table->item(0, ArgumentColumn)->data(Qt::UserRole).toList(), arguments);
    }

    void AnotherTaskInTheRowIsLeftAlone()
    {
        const QSignalSpy spy(m_dialog.get(), &VTSetArgument::setArgument);
        Open(1, Groups(1), [this] {
            m_table->item(1, 0)->setData(Qt::UserRole, QStringLiteral("Task1"));
            Ok()->click();
            QVERIFY(!m_form->isVisible());
        });
        Open(1, Groups(1), [this] {
            m_table->setRowCount(0);
            Ok()->click();
            QVERIFY(!m_form->isVisible());
        });
        QCOMPARE(spy.size(), 0);
        QVERIFY(m_services.messageBox.shown.isEmpty());
    }

    void RowsFollowTheNumberOfGroups()
    {
        const auto Row = [this](int index) {
            return m_form->findChild<QWidget*>(QStringLiteral("wgtFrameRange_%1").arg(index));
        };
        Spin("spbGroup")->setValue(2);
        const int height = m_form->height();
        const int size = m_form->findChild<QWidget*>(QStringLiteral("wgtImageSize"))->y();
        Spin("spbGroup")->setValue(3);
        QVERIFY(!Row(2)->isHidden());
        QVERIFY(Row(3)->isHidden());
        QCOMPARE(Row(2)->y(), Row(1)->y() + RowHeight);
        QCOMPARE(Row(0)->y(), 50);
        QCOMPARE(m_form->findChild<QWidget*>(QStringLiteral("wgtImageSize"))->y(), size + RowHeight);
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
        QVERIFY(m_services.messageBox.shown.isEmpty());
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
        AddTo<QSpinBox>(form, QStringLiteral("spbGroup"));
        AddTo<QWidget>(form, QStringLiteral("wgtImageSize"))->setGeometry(10, 0, 100, RowHeight);
        AddTo<QCheckBox>(form, QStringLiteral("chkPrerender"));
        for (const char* name : {"lneImageWidth", "lneImageHeight"})
            AddTo<QLineEdit>(form, QLatin1String(name));
        for (int i = 0; i < 15; ++i) {
            auto* row = AddTo<QWidget>(form, QStringLiteral("wgtFrameRange_%1").arg(i));
            row->setGeometry(10, 50, 300, RowHeight);
            AddTo<QSpinBox>(row, QStringLiteral("spbStartFrame_%1").arg(i));
            AddTo<QSpinBox>(row, QStringLiteral("spbEndFrame_%1").arg(i));
            AddTo<QLabel>(row, QStringLiteral("lblFrameRange_%1").arg(i));
        }
    }

    QSpinBox* Spin(const char* name) const { return m_form->findChild<QSpinBox*>(QLatin1String(name)); }
    QPushButton* Ok() const { return m_form->findChild<QPushButton*>(QStringLiteral("btnOk")); }

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
    std::unique_ptr<QDialog> m_form;
    std::unique_ptr<VTSetArgument> m_dialog;
};

QTEST_MAIN(TestSetArgument)
#include "tst_dialogs_setargument.moc"
