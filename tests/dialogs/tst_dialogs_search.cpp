#include "tests/dialogs/dialog_fixture.h"

#include "dialogs/vtr_search.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QPushButton>

class TestSearch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString folder = QCoreApplication::applicationDirPath() + "/Conf"_s;
        QVERIFY(QDir().mkpath(folder));
        QFile file(QString(folder + "/com.vtr.qsclient.ini"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[vtr.rendering]\nmaya=v1&Maya 2022, skipped, one&two&three, &\n[other]\nmax=c&d\n");
    }

    void init()
    {
        m_form.reset(NewForm("com.vtr.search"_s, {}));
        m_search = std::make_unique<VTSearch>(m_form.get());
        m_search->InitWidgets();
        m_search->Update();
        connect(m_search.get(), &VTSearch::search, this,
            [this](QVariantMap& condition) { m_condition = condition; });
        m_condition = {{"nothing"_s, "came"_s}};
    }

    void EachFieldBecomesACondition()
    {
        m_search->TriggerProjectListResponse(200, Projects("Film"_s, " 77 "_s));
        m_search->Update();
        Find<QLineEdit>(m_form, "lneJobId")->setText(" 12 "_s);
        Find<QLineEdit>(m_form, "lneJobName")->setText("shot "_s);
        Choices("JobType")->setCurrentIndex(1);
        Choices("JobStatus")->setCurrentText("Waiting"_s);
        Choices("ProjectName")->setCurrentText("Film"_s);
        Choices("BusinessType")->setCurrentIndex(2);
        Find<QCheckBox>(m_form, "checkBox_endTimeRange")->setChecked(true);
        QDateTime time(QDate(2024, 5, 6), QTime(7, 8, 9));
        for (const char* name : {"dteEndTimeLower", "dteEndTimeUpper"}) {
            Find<QDateTimeEdit>(m_form, name)->setDisplayFormat("yyyy-MM-dd HH:mm:ss"_s);
            Find<QDateTimeEdit>(m_form, name)->setDateTime(time);
            time = time.addDays(1);
        }
        Search();
        const QVariantMap expected {{"job_increasement"_s, "12"_s}, {"job_name"_s, "shot"_s},
            {"job_type"_s, "maya@v1@Maya 2022"_s}, {"status"_s, "0"_s}, {"pool_id"_s, "77"_s},
            {"job_business_type"_s, "1"_s}, {"end_min_time"_s, "2024-05-06 07:08:09"_s},
            {"end_max_time"_s, "2024-05-07 07:08:09"_s}};
        QCOMPARE(m_condition, expected);
    }

    void ChoicesOfTheForm()
    {
        QVariantList codes;
        for (int i = 0; i < Choices("JobStatus")->count(); ++i)
            codes << Choices("JobStatus")->itemData(i);
        QCOMPARE(codes, QVariantList({-1, 0, 1, 2, 4, 5, 6, 7, 8, 9}));
        QCOMPARE(Choices("JobStatus")->itemText(3), "Stopped"_s);

        // An entry of two empty parts is offered, but its blank text does not filter.
        QCOMPARE(Choices("JobType")->count(), 3);
        Choices("JobType")->setCurrentIndex(2);
        m_search->Show();
        QVERIFY(m_form->isVisible());
        Search();
        QCOMPARE(m_condition, QVariantMap());
        QVERIFY(!m_form->isVisible());
    }

    void ProjectsShowFromTheNextUpdateOn()
    {
        m_search->TriggerProjectListResponse(200, Projects("Film"_s, "1"_s));
        QCOMPARE(Choices("ProjectName")->count(), 1);
        m_search->TriggerProjectListResponse(500, Projects("Other"_s, "2"_s));
        m_search->Update();
        QCOMPARE(Choices("ProjectName")->count(), 2);
        QCOMPARE(Choices("ProjectName")->itemText(1), "Film"_s);
        m_search->TriggerProjectListResponse(200, {{"data"_s, "rubbish"_s}});
        m_search->Update();
        QCOMPARE(Choices("ProjectName")->count(), 1);
    }

    void ResetKeepsTheTimes()
    {
        Find<QLineEdit>(m_form, "lneJobId")->setText("1"_s);
        Choices("JobStatus")->setCurrentIndex(3);
        auto* startRange = Find<QCheckBox>(m_form, "checkBox_startTimeRange");
        startRange->setChecked(true);
        Find<QPushButton>(m_form, "btnReset")->click();
        QVERIFY(Find<QLineEdit>(m_form, "lneJobId")->text().isEmpty());
        QCOMPARE(Choices("JobStatus")->currentIndex(), 0);
        QVERIFY(startRange->isChecked());
        QVERIFY(Find<QDateTimeEdit>(m_form, "dteStartTimeUpper")->isEnabled());
        QVERIFY(!Find<QDateTimeEdit>(m_form, "dteEndTimeUpper")->isEnabled());
    }

    void WithoutFormNothingHappens()
    {
        m_form.reset();
        CallEverySlot(m_search.get());
        QVERIFY(m_condition.contains("nothing"_s));
    }

private:
    static QVariantMap Projects(const QString& name, const QString& pool)
    {
        const QVariantMap project {{"project_name"_s, name}, {"project_pool"_s, pool}};
        return {{"data"_s, QVariantList {project}}};
    }

    QComboBox* Choices(const char* what) const
    {
        return m_form->findChild<QComboBox*>(QString("cmb"_s + QLatin1String(what)));
    }
    void Search() const { Find<QPushButton>(m_form, "btnSearchJob")->click(); }

    std::unique_ptr<QWidget> m_form;
    std::unique_ptr<VTSearch> m_search;
    QVariantMap m_condition;
};

QTEST_MAIN(TestSearch)
#include "tst_dialogs_search.moc"
