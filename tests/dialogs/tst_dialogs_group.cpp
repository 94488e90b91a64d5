#include "dialog_fixture.h"

#include "vtr_group.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QToolBox>
#include <QtTest>

namespace {

const QString GroupFolder = "Data"_s;

} // namespace

class TestGroup : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_services = std::make_unique<ServicesFixture>();
        m_account = std::make_unique<AccountFixture>(GroupFolder);
        m_mainForm = std::make_unique<QWidget>();
        m_mainForm->resize(800, 600);
        m_panel = AddTo<QWidget>(m_mainForm.get(), "wgtGroup"_s);
        m_panel->move(0, 100);
        AddTo<QLabel>(m_mainForm.get(), "lblProject"_s);
        m_project = AddTo<QLabel>(m_mainForm.get(), "lblProjectV"_s);
        m_input = std::make_unique<QDialog>();
        for (const char* name : {"btnClose", "btnOk", "btnCancel"})
            AddTo<QPushButton>(m_input.get(), QLatin1String(name));
        for (const char* name : {"lblTip", "lblTitle"})
            AddTo<QLabel>(m_input.get(), QLatin1String(name));
        m_name = AddTo<QLineEdit>(m_input.get(), "lneInput"_s);

        m_group = std::make_unique<VTGroup>(m_mainForm.get(), m_panel, m_input.get());
        m_group->SetServices(m_services->siblings);
        m_group->InitWidgets();
        m_group->ChangeSkin("default"_s);
        m_group->ChangeLanguage();
        m_toolBox = m_panel->findChild<QToolBox*>();
        const auto lists = m_toolBox->findChildren<QListWidget*>();
        m_status = lists.at(0);
        m_groups = lists.at(1);
        m_condition = "none yet"_s;
        connect(m_group.get(), &VTGroup::condition, this,
            [this](const QString& condition) { m_condition = condition; });
    }

    void StatusFilters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("condition");

        QTest::newRow("running") << "Running"_s
                                 << "{\"status\":1}"_s;
        QTest::newRow("finished") << "Finished"_s
                                  << "{\"status\":4}"_s;
        QTest::newRow("all") << "All"_s << QString();
    }

    void StatusFilters()
    {
        QFETCH(QString, name);
        emit m_status->itemClicked(m_status->findItems(name, Qt::MatchExactly).value(0));
        QTEST(m_condition, "condition");
    }

    void SignInListsTheGroups()
    {
        m_account->Write("[jobgroup]\nbeta=g1, g2\nalpha=\n");
        m_services->settings.values[CurrentKey()] = "beta"_s;
        SignIn();
        QCOMPARE(Listed(), QStringList({"alpha"_s, "beta"_s}));
        QCOMPARE(m_project->text(), "beta"_s);
        QCOMPARE(Json(m_group->CurrentProjectCondition()), Json("{\"job_guid\":\"g1,g2\"}"_s));
        QCOMPARE(m_group->CurrentPage(), 0);
        QCOMPARE(m_condition, "none yet"_s);
    }

    void ProjectThatHasGoneGivesWayToTheFirst()
    {
        m_account->Write("[jobgroup]\nbeta=g1\nalpha=g2\n");
        m_services->settings.values[CurrentKey()] = "Beta"_s;
        SignIn();
        QCOMPARE(m_project->text(), "alpha"_s);
        QCOMPARE(m_services->settings.values[CurrentKey()].toString(), "alpha"_s);
        Delete("alpha"_s);
        QCOMPARE(m_project->text(), "beta"_s);
        Delete("beta"_s);
        QCOMPARE(m_project->text(), QString());
        QCOMPARE(Json(m_group->CurrentProjectCondition()), Json("{\"job_guid\":\"abcdefg\"}"_s));
    }

    void ChosenGroupIsReadAnew()
    {
        SignIn();
        Add("film"_s);
        Choose("film"_s);
        QCOMPARE(Json(m_condition), Json("{\"job_guid\":\"abcdefg\"}"_s));
        {
            QSettings settings(m_account->Path(), QSettings::IniFormat);
            settings.setValue("jobgroup/film"_s, QStringList {"g2"_s, "g1"_s});
        }
        Choose("film"_s);
        QCOMPARE(Json(m_condition), Json("{\"job_guid\":\"g2,g1\"}"_s));
        QCOMPARE(m_project->text(), "film"_s);
        QCOMPARE(m_services->settings.values[CurrentKey()].toString(), "film"_s);
    }

    void NewGroupsStandOnTopUntilTheNextRefill()
    {
        SignIn();
        Add("A"_s);
        Add(" B "_s);
        Add("A"_s);
        Add("  "_s);
        QCOMPARE(Listed(), QStringList({"B"_s, "A"_s}));
        m_group->UpdateGroup();
        QCOMPARE(Listed(), QStringList({"A"_s, "B"_s}));
    }

    void NamesWithSlashesAreOneGroup()
    {
        SignIn();
        const QStringList names {"/a"_s, "a/b"_s, "a\\b"_s};
        for (const QString& name : names)
            Add(name);
        Add("a"_s);
        Delete("a"_s);
        QStringList listed = Listed();
        listed.sort();
        QCOMPARE(listed, names);
        Choose("/a"_s);
        QCOMPARE(m_project->text(), "/a"_s);
        for (const QString& name : names)
            Delete(name);
        QCOMPARE(Listed(), QStringList());
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
        QCOMPARE(Json(m_group->CurrentProjectCondition()), Json("{\"job_guid\":\"abcdefg\"}"_s));
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
        m_input.reset();
        m_group->ClickedOk();
        m_group->AddGroup();
        m_group->ChangeLanguage();
        m_mainForm.reset();
        m_group->WindowSizeChanged();
        m_group->UpdateGroup();
        m_group->DeleteGroup();
        m_group->ChangeSkin("other"_s);
        m_group->ChangeLanguage();
        QCOMPARE(m_group->CurrentPage(), 0);
        SignIn();
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
    static QByteArray Json(const QString& text)
    {
        return QJsonDocument::fromJson(text.toUtf8()).toJson(QJsonDocument::Compact);
    }

    QString CurrentKey() const { return "vtr.account.%1/currentproject"_s.arg(m_account->user); }

    void SignIn() { m_group->Login(AccountFixture::Server, m_account->user, "t"_s, "id"_s); }

    /// Types a name into the input dialog and confirms it.
    void Add(const QString& name)
    {
        Soon(m_input.get(), [this, name] {
            m_name->setText(name);
            m_input->findChild<QPushButton*>("btnOk"_s)->click();
        });
        m_group->AddGroup();
    }

    QListWidgetItem* Item(const QString& name) const
    {
        return m_groups->findItems(name, Qt::MatchExactly).value(0);
    }
    void Choose(const QString& name) { emit m_groups->itemClicked(Item(name)); }

    void Delete(const QString& name)
    {
        m_groups->setCurrentItem(Item(name));
        m_group->DeleteGroup();
    }

    QStringList Listed() const
    {
        QStringList names;
        for (int i = 0; i < m_groups->count(); ++i)
            names << m_groups->item(i)->text();
        return names;
    }

    std::unique_ptr<ServicesFixture> m_services;
    std::unique_ptr<AccountFixture> m_account;
    std::unique_ptr<QWidget> m_mainForm;
    std::unique_ptr<QDialog> m_input;
    std::unique_ptr<VTGroup> m_group;
    QWidget* m_panel = nullptr;
    QLabel* m_project = nullptr;
    QLineEdit* m_name = nullptr;
    QToolBox* m_toolBox = nullptr;
    QListWidget* m_status = nullptr;
    QListWidget* m_groups = nullptr;
    QString m_condition;
};

QTEST_MAIN(TestGroup)
#include "tst_dialogs_group.moc"
