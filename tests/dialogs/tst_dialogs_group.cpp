#include "tests/dialogs/dialog_fixture.h"

#include "dialogs/vtr_group.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>

namespace {

const QString noGroup = "{\"job_guid\":\"abcdefg\"}"_s;

} // namespace

class TestGroup : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_services = std::make_unique<ServicesFixture>();
        m_account = std::make_unique<AccountFixture>("Data"_s);
        m_mainForm.reset(NewForm("com.vtr.qsclient"_s, {}));
        m_mainForm->resize(800, 600);
        m_panel = Find<QWidget>(m_mainForm, "wgtGroup");
        m_panel->move(0, 100);
        m_project = Find<QLabel>(m_mainForm, "lblProjectV");
        m_input.reset(NewForm("com.vtr.inputdialog"_s, {}));
        m_group = std::make_unique<VTGroup>(m_mainForm.get(), m_panel, qobject_cast<QDialog*>(m_input.get()));
        m_group->SetServices(m_services->siblings);
        m_group->InitWidgets();
        m_group->ChangeSkin("default"_s);
        m_group->ChangeLanguage();
        m_toolBox = m_panel->findChild<QToolBox*>();
        m_groups = m_toolBox->findChildren<QListWidget*>().at(1);
        m_condition = "none yet"_s;
        connect(m_group.get(), &VTGroup::condition, this,
            [this](const QString& condition) { m_condition = condition; });
    }

    void StatusFilters()
    {
        auto* list = m_toolBox->findChildren<QListWidget*>().at(0);
        QStringList conditions;
        for (const char* name : {"Running", "Finished", "All"}) {
            emit list->itemClicked(list->findItems(QLatin1String(name), Qt::MatchExactly).value(0));
            conditions << m_condition;
        }
        QCOMPARE(conditions, (QStringList {"{\"status\":1}"_s, "{\"status\":4}"_s, {}}));
    }

    void SignInListsTheGroups()
    {
        m_account->Write("[jobgroup]\nbeta=g1, \"g\\\"2\"\nalpha=\n");
        CurrentProject() = "beta"_s;
        SignIn();
        QCOMPARE(Listed(), "alpha,beta"_s);
        QCOMPARE(m_project->text(), "beta"_s);
        QCOMPARE(m_group->CurrentProjectCondition(), "{\"job_guid\":\"g1,g\\\"2\"}"_s);
        QCOMPARE(m_group->CurrentPage(), 0);
        QCOMPARE(m_condition, "none yet"_s);
    }

    void ProjectThatHasGoneGivesWayToTheFirst()
    {
        m_account->Write("[jobgroup]\nbeta=g1\nalpha=g2\n");
        CurrentProject() = "Beta"_s;
        SignIn();
        QCOMPARE(m_project->text(), "alpha"_s);
        QCOMPARE(CurrentProject(), QVariant("alpha"_s));
        for (const QString& next : {"beta"_s, QString()}) {
            m_groups->setCurrentRow(0);
            m_group->DeleteGroup();
            QCOMPARE(m_project->text(), next);
        }
        QCOMPARE(m_group->CurrentProjectCondition(), noGroup);
    }

    void ChosenGroupIsReadAnew()
    {
        SignIn();
        Add("film"_s);
        emit m_groups->itemClicked(m_groups->item(0));
        QCOMPARE(m_condition, noGroup);
        m_account->Write("[jobgroup]\nfilm=g2, g1\n");
        emit m_groups->itemClicked(m_groups->item(0));
        QCOMPARE(m_condition, "{\"job_guid\":\"g2,g1\"}"_s);
        QCOMPARE(m_project->text(), "film"_s);
        QCOMPARE(CurrentProject(), QVariant("film"_s));
    }

    void NewGroupsStandOnTopUntilTheNextRefill()
    {
        SignIn();
        for (const char* name : {"A", " B ", "A", "  "})
            Add(QLatin1String(name));
        QCOMPARE(Listed(), "B,A"_s);
        m_group->UpdateGroup();
        QCOMPARE(Listed(), "A,B"_s);
    }

    void FailedWriteIsTold()
    {
        m_account->Block();
        SignIn();
        Add("film"_s);
        QCOMPARE(m_services->messageBox.messages.size(), 1);
        QCOMPARE(m_services->logger.lines.size(), 1);
        QVERIFY(!m_input->isVisible());
    }

    void BeforeSignInNothingHappens()
    {
        Add("film"_s);
        m_group->DeleteGroup();
        m_group->UpdateGroup();
        QCOMPARE(m_groups->count(), 0);
        QVERIFY(m_services->settings.values.isEmpty());
        QCOMPARE(m_group->CurrentProjectCondition(), noGroup);
    }

    void PanelFollowsTheWindow()
    {
        m_group->WindowSizeChanged();
        QCOMPARE(m_panel->height(), 600 - 100 - 60);
        QCOMPARE(m_toolBox->maximumHeight(), 290);
        m_toolBox->setCurrentIndex(1);
        QCOMPARE(m_toolBox->maximumHeight(), 440 - 10);
        m_mainForm->resize(800, 50);
        m_group->WindowSizeChanged();
        QCOMPARE(m_panel->height(), 0);
    }

    void MenuBelongsToTheGroupList()
    {
        auto* menu = m_mainForm->findChild<QMenu*>();
        QCOMPARE(menu->actions().value(0)->text(), "Add"_s);
        QCOMPARE(menu->actions().value(1)->text(), "Delete"_s);
        emit m_toolBox->customContextMenuRequested(QPoint());
        QVERIFY(!menu->isVisible());
        emit m_groups->customContextMenuRequested(QPoint());
        QVERIFY(menu->isVisible());
        menu->close();
    }

    void FormsThatGoHarmNothing()
    {
        SignIn();
        m_toolBox->setCurrentIndex(1);
        for (auto* form : {&m_input, &m_mainForm}) {
            form->reset();
            CallEverySlot(m_group.get());
        }
        QCOMPARE(m_group->CurrentPage(), 0);
        QVERIFY(!m_group->CurrentProjectCondition().isEmpty());
    }

    void cleanup()
    {
        m_group.reset();
        m_input.reset();
        m_mainForm.reset();
        m_account.reset();
    }

private:
    QVariant& CurrentProject() const
    {
        return m_services->settings.values["vtr.account.%1/currentproject"_s.arg(m_account->user)];
    }

    void SignIn() { m_group->Login(m_account->server, m_account->user, "t"_s, "id"_s); }

    /// Types a name into the input dialog and confirms it.
    void Add(const QString& name)
    {
        QTimer::singleShot(0, m_input.get(), [this, name] {
            Find<QLineEdit>(m_input, "lneInput")->setText(name);
            Find<QPushButton>(m_input, "btnOk")->click();
        });
        m_group->AddGroup();
    }

    QString Listed() const
    {
        QStringList names;
        for (int i = 0; i < m_groups->count(); ++i)
            names << m_groups->item(i)->text();
        return names.join(","_s);
    }

    std::unique_ptr<ServicesFixture> m_services;
    std::unique_ptr<AccountFixture> m_account;
    std::unique_ptr<QWidget> m_mainForm;
    std::unique_ptr<QWidget> m_input;
    std::unique_ptr<VTGroup> m_group;
    QWidget* m_panel = nullptr;
    QLabel* m_project = nullptr;
    QToolBox* m_toolBox = nullptr;
    QListWidget* m_groups = nullptr;
    QString m_condition;
};

QTEST_MAIN(TestGroup)
#include "tst_dialogs_group.moc"
