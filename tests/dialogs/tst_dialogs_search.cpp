#include "dialog_fixture.h"

#include "vtr_search.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

class TestSearch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString path
            = QCoreApplication::applicationDirPath() + QStringLiteral("/Conf/com.vtr.qsclient.ini");
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[vtr.rendering]\nmaya=v1&Maya 2022, skipped, &\n");
    }

    void init()
    {
        m_form = std::make_unique<QWidget>();
        for (const char* name :
            {"lblJobID", "lblJobName", "lblJobType", "lblJobStatus", "lblProjectName", "lblBusinessType"})
            AddTo<QLabel>(m_form.get(), QLatin1String(name));
        m_id = AddTo<QLineEdit>(m_form.get(), QStringLiteral("lneJobId"));
        m_name = AddTo<QLineEdit>(m_form.get(), QStringLiteral("lneJobName"));
        m_type = AddTo<QComboBox>(m_form.get(), QStringLiteral("cmbJobType"));
        m_status = AddTo<QComboBox>(m_form.get(), QStringLiteral("cmbJobStatus"));
        m_project = AddTo<QComboBox>(m_form.get(), QStringLiteral("cmbProjectName"));
        m_business = AddTo<QComboBox>(m_form.get(), QStringLiteral("cmbBusinessType"));
        m_startRange = AddTo<QCheckBox>(m_form.get(), QStringLiteral("checkBox_startTimeRange"));
        m_endRange = AddTo<QCheckBox>(m_form.get(), QStringLiteral("checkBox_endTimeRange"));
        for (const char* name :
            {"dteStartTimeLower", "dteStartTimeUpper", "dteEndTimeLower", "dteEndTimeUpper"})
            AddTo<QDateTimeEdit>(m_form.get(), QLatin1String(name))
                ->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        m_searchButton = AddTo<QPushButton>(m_form.get(), QStringLiteral("btnSearchJob"));
        m_reset = AddTo<QPushButton>(m_form.get(), QStringLiteral("btnReset"));
        AddTo<QPushButton>(m_form.get(), QStringLiteral("btnCloseSearch"));

        m_search = std::make_unique<VTSearch>(m_form.get());
        m_search->InitWidgets();
        m_search->Update();
        connect(m_search.get(), &VTSearch::search, this,
            [this](QVariantMap& condition) { m_condition = condition; });
        m_condition = {{QStringLiteral("nothing"), QStringLiteral("came")}};
    }

    void EmptySearchHasNoConditions()
    {
        m_search->Show();
        QVERIFY(m_form->isVisible());
        m_searchButton->click();
        QCOMPARE(m_condition, QVariantMap());
        QVERIFY(!m_form->isVisible());
    }

    void EachFieldBecomesACondition()
    {
        m_search->TriggerProjectListResponse(200, Projects(QStringLiteral("Film"), QStringLiteral(" 77 ")));
        m_search->Update();
        m_id->setText(QStringLiteral(" 12 "));
        m_name->setText(QStringLiteral("shot "));
        m_type->setCurrentIndex(1);
        m_status->setCurrentText(QStringLiteral("Finished"));
        m_project->setCurrentText(QStringLiteral("Film"));
        m_business->setCurrentIndex(2);
        m_endRange->setChecked(true);
        auto* lower = m_form->findChild<QDateTimeEdit*>(QStringLiteral("dteEndTimeLower"));
        auto* upper = m_form->findChild<QDateTimeEdit*>(QStringLiteral("dteEndTimeUpper"));
        lower->setDateTime(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9)));

        m_searchButton->click();
        const QVariantMap expected {{QStringLiteral("job_increasement"), QStringLiteral("12")},
            {QStringLiteral("job_name"), QStringLiteral("shot")},
            {QStringLiteral("job_type"), QStringLiteral("maya@v1@Maya 2022")},
            {QStringLiteral("status"), QStringLiteral("4")},
            {QStringLiteral("pool_id"), QStringLiteral("77")},
            {QStringLiteral("job_business_type"), QStringLiteral("1")},
            {QStringLiteral("end_min_time"), QStringLiteral("2024-05-06 07:08:09")},
            {QStringLiteral("end_max_time"), upper->text()}};
        QCOMPARE(m_condition, expected);
    }

    void ChoicesOfTheForm()
    {
        QVariantList codes;
        for (int i = 0; i < m_status->count(); ++i)
            codes << m_status->itemData(i);
        QCOMPARE(codes, QVariantList({-1, 0, 1, 2, 4, 5, 6, 7, 8, 9}));
        QCOMPARE(m_status->itemText(3), QStringLiteral("Stopped"));

        // An entry of two empty parts is offered, but its blank text does not filter.
        QCOMPARE(m_type->count(), 3);
        m_type->setCurrentIndex(2);
        m_searchButton->click();
        QCOMPARE(m_condition, QVariantMap());
    }

    void ProjectsShowFromTheNextUpdateOn()
    {
        m_search->TriggerProjectListResponse(200, Projects(QStringLiteral("Film"), QStringLiteral("1")));
        QCOMPARE(m_project->count(), 1);
        m_search->TriggerProjectListResponse(500, Projects(QStringLiteral("Other"), QStringLiteral("2")));
        m_search->Update();
        QCOMPARE(m_project->count(), 2);
        QCOMPARE(m_project->itemText(1), QStringLiteral("Film"));
        m_search->TriggerProjectListResponse(200, {{QStringLiteral("data"), QStringLiteral("rubbish")}});
        m_search->Update();
        QCOMPARE(m_project->count(), 1);
    }

    void ResetKeepsTheTimes()
    {
        m_id->setText(QStringLiteral("1"));
        m_status->setCurrentIndex(3);
        m_startRange->setChecked(true);
        m_reset->click();
        QVERIFY(m_id->text().isEmpty());
        QCOMPARE(m_status->currentIndex(), 0);
        QVERIFY(m_startRange->isChecked());
        QVERIFY(m_form->findChild<QDateTimeEdit*>(QStringLiteral("dteStartTimeUpper"))->isEnabled());
        QVERIFY(!m_form->findChild<QDateTimeEdit*>(QStringLiteral("dteEndTimeUpper"))->isEnabled());
    }

    void WithoutFormNothingHappens()
    {
        m_form.reset();
        m_search->ClickSearch();
        m_search->Update();
        m_search->Show();
        m_search->ChangeLanguage();
        m_search->ChangeSkin(QStringLiteral("default"));
        m_search->Close();
        QVERIFY(m_condition.contains(QStringLiteral("nothing")));
    }

    void cleanup()
    {
        m_search.reset();
        m_form.reset();
    }

private:
    static QVariantMap Projects(const QString& name, const QString& pool)
    {
        const QVariantMap project {
            {QStringLiteral("project_name"), name}, {QStringLiteral("project_pool"), pool}};
        return {{QStringLiteral("data"), QVariantList {project}}};
    }

    std::unique_ptr<QWidget> m_form;
    std::unique_ptr<VTSearch> m_search;
    QLineEdit* m_id = nullptr;
    QLineEdit* m_name = nullptr;
    QComboBox* m_type = nullptr;
    QComboBox* m_status = nullptr;
    QComboBox* m_project = nullptr;
    QComboBox* m_business = nullptr;
    QCheckBox* m_startRange = nullptr;
    QCheckBox* m_endRange = nullptr;
    QPushButton* m_searchButton = nullptr;
    QPushButton* m_reset = nullptr;
    QVariantMap m_condition;
};

QTEST_MAIN(TestSearch)
#include "tst_dialogs_search.moc"
