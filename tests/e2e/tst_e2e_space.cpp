#include "host/mainform/main_form.h"
#include "tests/e2e/running_client.h"

#include <QImage>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QTableView>
#include <QTableWidget>
#include <QTabWidget>

namespace {

constexpr int NoiseSide = 1500; // pixels; noise does not compress, so each scene takes 7 MB

/// Writes a scene that only the named job has.
QString WriteScene(const QString& folder, const QString& name, quint32 seed)
{
    QImage noise(NoiseSide, NoiseSide, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    random.fillRange(
        reinterpret_cast<quint32*>(noise.bits()), noise.sizeInBytes() / qsizetype(sizeof(quint32)));
    const QString scene = "%1/%2.pov"_s.arg(folder, name);
    QDir().mkpath(folder);
    noise.save("%1/%2.png"_s.arg(folder, name));
    WriteFile(scene,
        "#version 3.7;\nglobal_settings { assumed_gamma 1 }\ncamera { location <0, 0, -3> look_at 0 }\n"
        "plane { z, 1 pigment { image_map { png \""
            + name.toUtf8() + ".png\" } } }\n");
    WriteFile("%1/%2.ini"_s.arg(folder, name), "Width=32\nHeight=18\nInitial_Frame=1\nFinal_Frame=400\n");
    return scene;
}

} // namespace

/// An account's space on the farm, with the whole client.
class TestE2eSpace : public QObject
{
    Q_OBJECT

private slots:
    void AFullAccountMakesRoomForAScene()
    {
        RunningClient client;
        const auto data = client.PrepareFarm("artist");
        data->Change("UPDATE accounts SET quota = 10000000 WHERE name = 'artist'");
        const QString old = WriteScene(client.Path("scenes"_s), "old"_s, 1);
        const QString next = WriteScene(client.Path("scenes"_s), "next"_s, 2);
        QCOMPARE(client.Start("artist"_s), QString());
        client.Submit({old});
        EVENTUALLY_COMPARE(data->Count("SELECT count(*) FROM jobs"), 1);

        // The task has shown its own list.
        Find<QTabWidget>("tbwContainer")->setCurrentIndex(0);
        EVENTUALLY_COMPARE(FindJobTable()->rowCount(), 1);
        emit FindJobTable()->cellDoubleClicked(0, 1);
        auto* priority = Find<QSpinBox>("spnPriority");
        EVENTUALLY(priority->isEnabled());
        priority->setValue(9);
        EVENTUALLY_COMPARE(data->Count("SELECT priority FROM jobs"), 9);
        priority->window()->close();

        // The next scene finds no room, until the job is deleted.
        const Soon offered([] { return Answer("next.pov"_s, "btnMessageBox_2"); });
        client.Submit({next});
        EVENTUALLY(offered.IsDone());
        auto* jobs = Find<QTableView>("tbvJobs");
        EVENTUALLY(jobs->isVisible() && jobs->model()->rowCount() == 1);
        QVERIFY(Find<QLabel>("lblUsed")->text().endsWith("of 9.5 MiB used"_s));
        emit jobs->clicked(jobs->model()->index(0, 1));
        const Soon agreed([] { return Answer("Delete 1 job"_s, "btnMessageBox_2"); });
        jobs->window()->findChild<QPushButton*>("btnDelete"_s)->click();
        EVENTUALLY(agreed.IsDone());
        EVENTUALLY_COMPARE(data->Count("SELECT count(*) FROM jobs WHERE status <> 5 AND name = 'next'"), 1);
        Find<QTabWidget>("tbwContainer")->setCurrentIndex(0);
        const auto shown
            = [] { return FindJobTable()->rowCount() == 1 ? FindJobTable()->item(0, 1)->text() : QString(); };
        EVENTUALLY_COMPARE(shown(), "next"_s);
    }
};

QTEST_MAIN(TestE2eSpace)
#include "tst_e2e_space.moc"
