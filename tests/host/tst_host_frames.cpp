#include "host/frames/chart_layout.h"
#include "host/frames/chart_view.h"
#include "host/frames/frames_window.h"
#include "host/services/ui_loader_service.h"
#include "host/ui/picture_series.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QtTest>
#include <QtWidgets>

namespace {

/// The values, the room's width, the value at the upper edge, the number of bars, and the last bar's values.
const auto& Charts()
{
    static const std::tuple<const char*, std::vector<double>, int, double, int, int> rows[] = {
        {"none", {}, 100, 1, 0, 0},
        {"only zeros", {0, 0}, 100, 1, 2, 1},
        {"one", {3}, 100, 5, 1, 1},
        {"a round one", {0.2, 0.1}, 100, 0.2, 2, 1},
        {"as many as pixels", std::vector<double>(100, 7), 100, 10, 100, 1},
        {"more than pixels", std::vector<double>(101, 7), 100, 10, 51, 1},
        {"20,000", std::vector<double>(20000, 1200), 300, 2000, 299, 34},
        {"no room", {1, 2}, 0, 1, 0, 0},
    };
    return rows;
}

QByteArray FirstAnswer()
{
    return "{'job': {'job_status': 1, 'job_cost': '0.30', 'job_cost_unit': 'RMB'}, 'message': '', "
           "'time': 50, 'total': 4, 'priority': 5, 'rendering': [[3, 7, 'n1', 64]], 'frames': ["
           "[1, 2, 1, 2400, 24000, 'frame_0001.png', SIZE], [2, 0, 1, 0, 0, '', 0], "
           "[3, 0, 0, 0, 0, '', 0], [4, 2, 1, 40, 12000, '../x', 9], [4], 'rubbish', [1, 0]]}";
}

QByteArray SecondAnswer()
{
    return "{'job': {'job_status': 7}, 'message': 'no lamp\\nat all', 'time': 60, 'total': 4, "
           "'rendering': [], 'frames': [[2, 3, 3, 0, 0, '', 0]]}";
}

QByteArray Png()
{
    QByteArray png;
    QBuffer buffer(&png);
    QImage(300, 200, QImage::Format_RGB32).save(&buffer, "PNG");
    return png;
}

/// A window that shows the frames of a job on a stand-in for the farm.
struct Follower
{
    Follower()
    {
        const QByteArray png = Png();
        server.SetReplies({StandInServer::Data("{'log': 'all is well'}")});
        server.SetReplyTo("/frames?since=0 ",
            StandInServer::Data(FirstAnswer().replace("SIZE", QByteArray::number(png.size()))));
        server.SetReplyTo("/frames?since=50 ", StandInServer::Data(SecondAnswer()));
        server.SetReplyTo("/files/", StandInServer::Http(200, png));
        server.SetReplyTo("/spending",
            StandInServer::Data("{'currency': 'RMB', 'days': [{'day': 'd', 'amount': '2.50'}, "
                                "{'day': '<b>e</b>', 'amount': '1e300'}]}"));
        window.SetAccess({FarmApiRoot(server.Url()), "t"_s, "owner"_s, folder.path()});
        window.Open("j1"_s, "shot"_s, "1_shot"_s);
    }

    template <typename Widget>
    Widget* Find(const QString& name = {})
    {
        return window.Form()->findChild<Widget*>(name);
    }

    QString Text(const char* label) { return Find<QLabel>(QLatin1String(label))->text(); }

    QString Cells(int row) const
    {
        QStringList texts;
        for (int column = 0; column < FrameModel::ColumnCount; ++column)
            texts.append(table->model()->index(row, column).data().toString());
        return texts.join(QLatin1Char('|'));
    }

    bool HasThumbnail(int row) const
    {
        return !table->model()->index(row, 0).data(Qt::DecorationRole).isNull();
    }

    StandInServer server;
    QTemporaryDir folder;
    UiLoaderService loader {nullptr};
    FramesWindow window {&loader};
    QTableView* table = Find<QTableView>();
};

} // namespace

/// The window of a job's frames.
class FramesTest : public QObject
{
    Q_OBJECT

private slots:
    void LaysChartsOut_data() { AddRows(Charts()); }
    void LaysChartsOut()
    {
        const auto& [name, values, width, top, bars, inLast] = Row(Charts());
        const ChartLayout layout = ChartLayout::Of(values, {width, 80});
        QCOMPARE(layout.top, top);
        QCOMPARE(int(layout.bars.size()), bars);
        QCOMPARE(layout.At(width + 1), nullptr);
        for (const ChartBar& bar : layout.bars) {
            QVERIFY(bar.width > 0 && bar.height <= 80 && bar.x + bar.width <= width);
            QCOMPARE(layout.At(bar.x), &bar);
        }
        QCOMPARE(bars ? layout.bars.back().count : 0, inLast);
        QVERIFY(bars == 0 || layout.bars.back().first + inLast == int(values.size()));
    }

    void FollowsAJob()
    {
        Follower follower;
        EVENTUALLY_COMPARE(follower.Text("lblSummary"),
            "Running · 2 of 4 frames finished · 1 being rendered · 1.2 s a frame · 0.30 RMB"_s);
        QCOMPARE(follower.Cells(0), "1|Finished|2.4 s|0.0240|1"_s);
        QCOMPARE(follower.Cells(2), "3|Rendering · 64 %|7.0 s||"_s);
        QCOMPARE(follower.Cells(3), "4|Finished|40 ms|0.0120|1"_s);
        EVENTUALLY_COMPARE(follower.Find<QPlainTextEdit>()->toPlainText(), "all is well"_s);
        EVENTUALLY(follower.HasThumbnail(0));
        QCOMPARE(follower.Find<ChartView>()->accessibleDescription(),
            "2 finished frames took 1.2 s each on average, and at most 2.4 s."_s);
        // The next answer holds only what has changed.
        EVENTUALLY_COMPARE(follower.Text("lblTrouble"), "The job has failed: no lamp"_s);
        QCOMPARE(follower.Cells(1), "2|Failed|||3"_s);
        QCOMPARE(follower.Cells(2), "3|Waiting|||"_s);
        QVERIFY(follower.HasThumbnail(0));
        follower.Find<QPushButton>("btnSpending"_s)->click();
        EVENTUALLY_COMPARE(
            follower.Find<ChartView>()->accessibleDescription(), "2.50 RMB in the last 2 days."_s);
        follower.server.Refuse();
        EVENTUALLY(follower.Text("lblTrouble").startsWith("The server cannot be reached"_s));
        follower.window.SetAccess({});
        QVERIFY(!follower.window.Form()->isVisible());
    }

    void ChangesThePriority()
    {
        Follower follower;
        auto* field = follower.Find<QSpinBox>("spnPriority"_s);
        EVENTUALLY_COMPARE(field->value(), 5);
        const auto changes = [&follower] {
            QByteArrayList bodies;
            const auto requests = follower.server.Requests();
            for (const QByteArray& request : requests) {
                if (request.startsWith("POST /api/v1/jobs/priority "))
                    bodies.append(request.mid(request.indexOf("\r\n\r\n") + 4));
            }
            return bodies;
        };
        // Somebody who scrolls past the field changes nothing; keys in a row are one change.
        QWheelEvent wheel({}, {}, {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(field, &wheel);
        follower.server.SetReplyTo("/priority ", StandInServer::Data("{'notAllowedJobs': []}"));
        for (const char* request : {"/frames?since=50 ", "/frames?since=60 "})
            follower.server.SetReplyTo(request,
                StandInServer::Data(SecondAnswer().replace("'message'", "'priority': 7, 'message'")));
        QTest::keyClick(field, Qt::Key_Up);
        QTest::keyClick(field, Qt::Key_Up);
        EVENTUALLY_COMPARE(changes(), QByteArrayList {R"({"ids":["j1"],"priority":7})"});
        EVENTUALLY(follower.Text("lblTrouble").contains("no lamp"_s));
        QCOMPARE(field->value(), 7);
        follower.server.SetReplyTo("/priority ", StandInServer::Http(404, R"({"message": "no & such job"})"));
        QTest::keyClick(field, Qt::Key_Down);
        EVENTUALLY_COMPARE(follower.Text("lblTrouble"), "no & such job."_s);
        QCOMPARE(field->value(), 7);
        // The last entry is sent even if the window closes, and a farm without priorities shows no field.
        field->setValue(-100);
        follower.window.Form()->close();
        EVENTUALLY_COMPARE(changes().size(), 3);
        QCOMPARE(changes().constLast(), QByteArray(R"({"ids":["j1"],"priority":-100})"));
        follower.server.SetReplyTo("/frames?since=0 ", StandInServer::Data(SecondAnswer()));
        follower.window.Open("j2"_s, "other"_s, "2_other"_s);
        EVENTUALLY(!follower.Find<QWidget>("wgtPriority"_s)->isVisible());
    }

    void PreviewsTheFinishedFrames()
    {
        Follower follower;
        EVENTUALLY(follower.HasThumbnail(0));
        std::shared_ptr<PictureSeries> series;
        int previews = 0;
        connect(&follower.window, &FramesWindow::PreviewRequested, this, [&](const auto& pictures) {
            series = pictures;
            ++previews;
        });
        // A picture whose name leads elsewhere, as in the last row, is ignored.
        for (const int row : {3, 0}) {
            follower.table->selectRow(row);
            emit follower.table->doubleClicked(follower.table->model()->index(row, 0));
        }
        QCOMPARE(previews, 1);
        QCOMPARE(series->Names(), QStringList("frame_0001.png"_s));
        QSignalSpy ready(series.get(), &PictureSeries::Ready);
        QSignalSpy failed(series.get(), &PictureSeries::Failed);
        series->Provide("frame_0001.png"_s);
        series->Provide("frame_0002.png"_s);
        EVENTUALLY_COMPARE(ready.count() * 10 + failed.count(), 11);
        QVERIFY(!QImage(ready.at(0).at(1).toString()).isNull());
    }
};

QTEST_MAIN(FramesTest)
#include "tst_host_frames.moc"
