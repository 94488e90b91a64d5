#include "tests/standins/client_test.h"

/// The search form: its choices, and the conditions that a search makes from its fields.
class TestSearch : public ClientTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString folder = QCoreApplication::applicationDirPath() + "/Conf"_s;
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(WriteFile(QString(folder + "/com.vtr.qsclient.ini"_s),
            "[vtr.rendering]\nmaya=v1&Maya 2022, skipped, one&two&three, &\n[other]\nmax=c&d\n"));
    }

    void TurnsEachFieldIntoACondition()
    {
        DeliverProjects(200, {{"project_name"_s, "Film"_s}, {"project_pool"_s, " 77 "_s}});
        DeliverProjects(500, {{"project_name"_s, "None"_s}});
        UpdateForm();
        Find<QLineEdit>("search", "lneJobId")->setText(" 12 "_s);
        Find<QLineEdit>("search", "lneJobName")->setText("shot "_s);
        Choices("JobType")->setCurrentIndex(1);
        Choices("JobStatus")->setCurrentText("Waiting"_s);
        Choices("ProjectName")->setCurrentText("Film"_s);
        Choices("BusinessType")->setCurrentIndex(2);
        QVariantMap expected {{"job_increasement"_s, "12"_s}, {"job_name"_s, "shot"_s},
            {"job_type"_s, "maya@v1@Maya 2022"_s}, {"status"_s, "0"_s}, {"pool_id"_s, "77"_s},
            {"job_business_type"_s, "1"_s}};
        QDateTime time(QDate(2024, 5, 6), QTime(7, 8, 9));
        for (const char* range : {"end", "start"}) {
            Range(range)->setChecked(true);
            for (const bool isLower : {true, false}) {
                time = time.addDays(1);
                Time(range, isLower ? "Lower" : "Upper")->setDateTime(time);
                const QString key = isLower ? "%1_min_time"_s : "%1_max_time"_s;
                expected.insert(key.arg(QLatin1String(range)), time.toString("yyyy-MM-dd HH:mm:ss"_s));
            }
            Click("search", "btnSearchJob");
            QCOMPARE(Conditions(), expected);
        }
    }

    void OffersItsChoices()
    {
        QStringList states;
        for (int i = 0; i < Choices("JobStatus")->count(); ++i)
            states << QString(
                Choices("JobStatus")->itemText(i) + Choices("JobStatus")->itemData(i).toString());
        QCOMPARE(states.join(","_s),
            "-1,Waiting0,Running1,Stopped2,Finished4,Deleted5,To full render6,Failed7,Arrears8,"
            "Pause due to arrears9"_s);
        for (const char* range : {"start", "end"}) {
            QCOMPARE(Time(range, "Lower")->dateTime(), QDate::currentDate().addDays(-7).startOfDay());
            QCOMPARE(Time(range, "Upper")->date(), QDate::currentDate());
        }

        // An entry of two empty parts is offered, but its blank text does not filter.
        Choices("JobType")->setCurrentIndex(2);
        m_client->Button("btnSearch"_s)->click();
        Click("search", "btnCloseSearch");
        QVERIFY(!Form("search")->isVisible());
        QVERIFY(Communication().requests.isEmpty());
        Click("search", "btnSearchJob");
        QVERIFY(!Sent("conditions").isValid());
    }

    void ClearsItsFields()
    {
        for (const bool isReset : {true, false}) {
            Find<QLineEdit>("search", "lneJobId")->setText("1"_s);
            Find<QLineEdit>("search", "lneJobName")->setText("1"_s);
            for (const char* what : {"JobType", "JobStatus", "ProjectName", "BusinessType"}) {
                Choices(what)->addItem("chosen"_s, "1"_s);
                Choices(what)->setCurrentText("chosen"_s);
            }
            if (isReset)
                Click("search", "btnReset");
            else
                UpdateForm();
            m_client->Button("btnSearch"_s)->click();
            QVERIFY(Form("search")->isVisible());
            Click("search", "btnSearchJob");
            QVERIFY(!Form("search")->isVisible());
            QVERIFY(!Sent("conditions").isValid());
        }
    }

    void EnablesTheTimesOfARange()
    {
        const auto Enabled = [this] {
            QString enabled;
            for (const char* range : {"start", "end"}) {
                for (const char* bound : {"Lower", "Upper"})
                    enabled += QString::number(int(Time(range, bound)->isEnabled()));
            }
            return enabled;
        };
        QCOMPARE(Enabled(), "0000"_s);
        Range("start")->setChecked(true);
        QCOMPARE(Enabled(), "1100"_s);
        Range("end")->setChecked(true);
        Range("start")->setChecked(false);
        QCOMPARE(Enabled(), "0011"_s);
    }

private:
    QComboBox* Choices(const char* what) const
    {
        return Find<QComboBox>("search", QByteArray("cmb").append(what));
    }
    QCheckBox* Range(const char* range) const
    {
        return Form("search")->findChild<QCheckBox*>("checkBox_%1TimeRange"_s.arg(QLatin1String(range)));
    }
    QDateTimeEdit* Time(const char* range, const char* bound) const
    {
        const QString name = *range == 's' ? "dteStartTime%1"_s : "dteEndTime%1"_s;
        return Form("search")->findChild<QDateTimeEdit*>(name.arg(QLatin1String(bound)));
    }
    void DeliverProjects(int result, const QVariantMap& project) const
    {
        emit Communication().ProjectListResponse(result, {{"data"_s, QVariantList {project}}});
    }
    void UpdateForm() const
    {
        QVERIFY(QMetaObject::invokeMethod(m_client->controllers.Find("VTSearch"), "Update"));
    }
};

QTEST_MAIN(TestSearch)
#include "tst_dialogs_search.moc"
