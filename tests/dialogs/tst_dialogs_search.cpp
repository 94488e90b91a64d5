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
        const QString path = QCoreApplication::applicationDirPath() + "/Conf/com.vtr.qsclient.ini"_s;
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
        m_id = AddTo<QLineEdit>(m_form.get(), "lneJobId"_s);
        m_name = AddTo<QLineEdit>(m_form.get(), "lneJobName"_s);
        m_type = AddTo<QComboBox>(m_form.get(), "cmbJobType"_s);
        m_status = AddTo<QComboBox>(m_form.get(), "cmbJobStatus"_s);
        m_project = AddTo<QComboBox>(m_form.get(), "cmbProjectName"_s);
        m_business = AddTo<QComboBox>(m_form.get(), "cmbBusinessType"_s);
        m_startRange = AddTo<QCheckBox>(m_form.get(), "checkBox_startTimeRange"_s);
        m_endRange = AddTo<QCheckBox>(m_form.get(), "checkBox_endTimeRange"_s);
        for (const char* name :
            {"dteStartTimeLower", "dteStartTimeUpper", "dteEndTimeLower", "dteEndTimeUpper"})
            AddTo<QDateTimeEdit>(m_form.get(), QLatin1String(name))
                ->setDisplayFormat("yyyy-MM-dd HH:mm:ss"_s);
        m_searchButton = AddTo<QPushButton>(m_form.get(), "btnSearchJob"_s);
        m_reset = AddTo<QPushButton>(m_form.get(), "btnReset"_s);
        AddTo<QPushButton>(m_form.get(), "btnCloseSearch"_s);

        m_search = std::make_unique<VTSearch>(m_form.get());
        m_search->InitWidgets();
        m_search->Update();
        connect(m_search.get(), &VTSearch::search, this,
            [this](QVariantMap& condition) { m_condition = condition; });
        m_condition = {{"nothing"_s, "came"_s}};
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
        m_search->TriggerProjectListResponse(200, Projects("Film"_s, " 77 "_s));
        m_search->Update();
        m_id->setText(" 12 "_s);
        m_name->setText("shot "_s);
        m_type->setCurrentIndex(1);
        m_status->setCurrentText("Finished"_s);
        m_project->setCurrentText("Film"_s);
        m_business->setCurrentIndex(2);
        m_endRange->setChecked(true);
        auto* lower = m_form->findChild<QDateTimeEdit*>("dteEndTimeLower"_s);
        auto* upper = m_form->findChild<QDateTimeEdit*>("dteEndTimeUpper"_s);
        lower->setDateTime(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9)));

        m_searchButton->click();
        const QVariantMap expected {{"job_increasement"_s, "12"_s}, {"job_name"_s, "shot"_s},
            {"job_type"_s, "maya@v1@Maya 2022"_s}, {"status"_s, "4"_s}, {"pool_id"_s, "77"_s},
            {"job_business_type"_s, "1"_s}, {"end_min_time"_s, "2024-05-06 07:08:09"_s},
            {"end_max_time"_s, upper->text()}};
        QCOMPARE(m_condition, expected);
    }

    void ChoicesOfTheForm()
    {
        QVariantList codes;
        for (int i = 0; i < m_status->count(); ++i)
            codes << m_status->itemData(i);
        QCOMPARE(codes, QVariantList({-1, 0, 1, 2, 4, 5, 6, 7, 8, 9}));
        QCOMPARE(m_status->itemText(3), "Stopped"_s);

        // An entry of two empty parts is offered, but its blank text does not filter.
        QCOMPARE(m_type->count(), 3);
        m_type->setCurrentIndex(2);
        m_searchButton->click();
        QCOMPARE(m_condition, QVariantMap());
    }

    void ProjectsShowFromTheNextUpdateOn()
    {
        m_search->TriggerProjectListResponse(200, Projects("Film"_s, "1"_s));
        QCOMPARE(m_project->count(), 1);
        m_search->TriggerProjectListResponse(500, Projects("Other"_s, "2"_s));
        m_search->Update();
        QCOMPARE(m_project->count(), 2);
        QCOMPARE(m_project->itemText(1), "Film"_s);
        m_search->TriggerProjectListResponse(200, {{"data"_s, "rubbish"_s}});
        m_search->Update();
        QCOMPARE(m_project->count(), 1);
    }

    void ResetKeepsTheTimes()
    {
        m_id->setText("1"_s);
        m_status->setCurrentIndex(3);
        m_startRange->setChecked(true);
        m_reset->click();
        QVERIFY(m_id->text().isEmpty());
        QCOMPARE(m_status->currentIndex(), 0);
        QVERIFY(m_startRange->isChecked());
        QVERIFY(m_form->findChild<QDateTimeEdit*>("dteStartTimeUpper"_s)->isEnabled());
        QVERIFY(!m_form->findChild<QDateTimeEdit*>("dteEndTimeUpper"_s)->isEnabled());
    }

    void WithoutFormNothingHappens()
    {
        m_form.reset();
        m_search->ClickSearch();
        m_search->Update();
        m_search->Show();
        m_search->ChangeLanguage();
        m_search->ChangeSkin("default"_s);
        m_search->Close();
        QVERIFY(m_condition.contains("nothing"_s));
    }

    void cleanup()
    {
        m_search.reset();
        m_form.reset();
    }

private:
    static QVariantMap Projects(const QString& name, const QString& pool)
    {
        const QVariantMap project {{"project_name"_s, name}, {"project_pool"_s, pool}};
        return {{"data"_s, QVariantList {project}}};
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
