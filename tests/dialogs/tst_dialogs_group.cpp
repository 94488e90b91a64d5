#include "tests/standins/client_test.h"

/// The group panel during a session: the account's groups, the current project and the menu.
class TestGroup : public ClientTest
{
    Q_OBJECT

private slots:
    void init()
    {
        ClientTest::init();
        m_groups = m_client->Form()->findChild<QToolBox*>()->findChildren<QListWidget*>().at(1);
    }

    void ListsTheGroupsOfTheAccount()
    {
        WriteAccountFile("Data"_s, "[jobgroup]\nbeta=g1, \"g\\\"2\"\nalpha=\n");
        CurrentProject() = "beta"_s;
        m_client->SignIn();
        QCOMPARE(Listed(), "alpha,beta"_s);
        QCOMPARE(Project()->text(), "beta"_s);
        QVERIFY(!Sent("conditions").isValid());
        for (const int row : {0, 1}) {
            const QListWidgetItem* item = m_groups->item(row);
            QCOMPARE(item->data(Qt::UserRole).toStringList().join(","_s), row == 0 ? QString() : "g1,g\"2"_s);
            QCOMPARE(item->toolTip(), item->text());
            emit m_groups->itemClicked(m_groups->item(row));
            QCOMPARE(Condition(), row == 0 ? "abcdefg"_s : "g1,g\"2"_s);
        }
    }

    void ReplacesAProjectThatIsGone()
    {
        WriteAccountFile("Data"_s, "[jobgroup]\nbeta=g1\nalpha=g2\n");
        CurrentProject() = "Beta"_s;
        m_client->SignIn();
        QCOMPARE(Project()->text(), "alpha"_s);
        QCOMPARE(CurrentProject(), QVariant("alpha"_s));
        for (const QString& next : {"beta"_s, QString()}) {
            m_groups->setCurrentRow(0);
            Entry("Delete")->trigger();
            QCOMPARE(Project()->text(), next);
        }
        Entry("Delete")->trigger();
    }

    void ReadsAChosenGroupAnew()
    {
        m_client->SignIn();
        AddGroup("film"_s);
        WriteAccountFile("Data"_s, "[jobgroup]\nfilm=g2, g1\n");
        emit m_groups->itemClicked(m_groups->item(0));
        QCOMPARE(Condition(), "g2,g1"_s);
        QCOMPARE(m_groups->item(0)->data(Qt::UserRole).toStringList(), QStringList({"g2"_s, "g1"_s}));
        QCOMPARE(Project()->text(), "film"_s);
        QCOMPARE(CurrentProject(), QVariant("film"_s));
    }

    void ShowsNewGroupsOnTopUntilTheNextRefill()
    {
        m_client->SignIn();
        for (const char* name : {"A", " B ", "A", "  "})
            AddGroup(QLatin1String(name));
        for (const char* button : {"btnCancel", "btnClose"})
            AddGroup("C"_s, button);
        QCOMPARE(Listed(), "B,A"_s);
        m_client->SignIn();
        QCOMPARE(Listed(), "A,B"_s);
    }

    void OpensItsPagesInTheHeightOfTheForm()
    {
        m_client->SignIn();
        auto* pages = m_client->Form()->findChild<QToolBox*>();
        const auto* panel = m_client->Find<QWidget>("wgtGroup"_s);
        QCOMPARE(pages->currentIndex(), 0);
        QCOMPARE(pages->height(), 290);
        for (const int height : {700, 800}) {
            pages->setCurrentIndex(0);
            m_client->Form()->resize(1200, height);
            pages->setCurrentIndex(1);
            QCOMPARE(panel->height(), height - panel->y() - 60);
            QCOMPARE(pages->height(), panel->height() - 10);
        }
        QVERIFY(pages->y() < 20);
    }

    void OffersItsMenuOverTheGroupsOnly()
    {
        m_client->SignIn();
        QCOMPARE(MenuOf(m_groups), "Add,Delete"_s);
        for (const int page : {0, 1}) {
            m_client->Form()->findChild<QToolBox*>()->setCurrentIndex(page);
            QCOMPARE(MenuOf(m_client->Form()->findChild<QToolBox*>()), QString());
        }
    }

    void ReportsAFailedWrite()
    {
        QVERIFY(QDir().mkpath(m_client->AccountFile("Data"_s)));
        m_client->SignIn();
        AddGroup("film"_s);
        QCOMPARE(MessageBox().messages.size(), 1);
        QCOMPARE(m_client->logger.lines.filter("The group file"_s).size(), 1);
    }

private:
    /// Types a name into the input dialog and presses one of its buttons.
    void AddGroup(const QString& name, const char* button = "btnOk") const
    {
        bool closed = false;
        WhileOpen("inputdialog", [&] {
            Find<QLineEdit>("inputdialog", "lneInput")->setText(name);
            Click("inputdialog", button);
            closed = !Form("inputdialog")->isVisible();
        });
        Entry("Add")->trigger();
        QVERIFY(closed);
    }

    QAction* Entry(const char* text) const
    {
        const auto entries = m_client->Form()->findChild<QMenu*>()->actions();
        return entries.at(entries.at(0)->text() == QLatin1String(text) ? 0 : 1);
    }
    QVariant& CurrentProject() const { return Settings()["vtr.account.login-ann/currentproject"_s]; }
    QLabel* Project() const { return m_client->Find<QLabel>("lblProjectV"_s); }
    QString Condition() const { return Conditions().value("job_guid"_s).toString(); }

    QString Listed() const
    {
        QStringList names;
        for (int i = 0; i < m_groups->count(); ++i)
            names << m_groups->item(i)->text();
        return names.join(","_s);
    }

    QListWidget* m_groups = nullptr;
};

QTEST_MAIN(TestGroup)
#include "tst_dialogs_group.moc"
