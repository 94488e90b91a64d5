// Compares the window with plain Qt that shows the same, painting included.
#include "bench/comparison.h"
#include "bench/floor_window.h"
#include "bench/shared_lists.h"
#include "common/vtr_codetables.h"
#include "host/ui/skins.h"
#include "tests/standins/client.h"

#include <QApplication>
#include <QPixmapCache>

#include <malloc.h>

namespace {

constexpr int PageSize = 18;
constexpr int Candidates = 1000;
constexpr int LowProgress = 10; // percent, like the next two
constexpr int SameBand = 30;
constexpr int OtherBand = 60;
const QString Skin = QStringLiteral("default");

QVariantList Jobs(int count, int first, int progress)
{
    QVariantList jobs;
    for (int number = first; number < first + count; ++number)
        jobs.append(MakeJob(number, 1, progress));
    return jobs;
}

/// The same jobs as the floor shows them.
QVector<ShownJob> Shown(const QVariantList& jobs)
{
    VTCodeTables codeTables;
    codeTables.Load();
    QVector<ShownJob> shown;
    for (const QVariant& job : jobs) {
        const QVariantMap map = job.toMap();
        const int progress = map.value("job_progress"_s).toInt();
        shown.append({{map.value("job_increasement"_s).toString(), map.value("job_name"_s).toString(),
                          map.value("job_submit_time"_s).toString(), {}, "Running"_s,
                          map.value("job_cost"_s).toString()},
            progress, codeTables.ProgressStyle(progress)});
    }
    return shown;
}

void Paint()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Counts paint events of all widgets while it lives.
class PaintCounter : public QObject
{
public:
    PaintCounter() { qApp->installEventFilter(this); }
    ~PaintCounter() override { qApp->removeEventFilter(this); }
    bool eventFilter(QObject* /*object*/, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

/// The window and the floor, both on the screen in the same size.
class Bench
{
public:
    Bench()
        : m_floor("com.vtr.qsclient"_s, Skin, "twtMyRender"_s)
    {
        m_client.uiLoader.skin = Skin;
        m_client.leftOut = QStringList {"VTRenderCoreInterface"_s};
        m_client.Start();
        m_client.Context()->registerService({"VTRenderCoreInterface"_s}, &m_renderCore);
        m_client.Open();
        m_client.SignIn();
        m_floor.Form()->resize(m_client.Form()->size());
        m_floor.Form()->show();
        for (int column = 0; column < FloorWindow::Columns; ++column)
            m_floor.Table()->setColumnWidth(column, m_client.Table("twtMyRender"_s)->columnWidth(column));
        m_renderCore.Resize(PageSize);
    }

    void MeasureJobs(CostTable& table)
    {
        m_client.Tabs()->setCurrentIndex(0);
        const QVariantList first = Jobs(PageSize, 1, LowProgress);
        const QVariantList sameBand = Jobs(PageSize, 101, SameBand);
        const QVariantList otherBand = Jobs(PageSize, 201, OtherBand);
        const Side values = Floor(Shown(first), Shown(sameBand));
        table.Compare("jobs: every value changed"_s, 0.7, values, Answers(first, sameBand));
        table.Compare("jobs: every value and band changed"_s, 0.9, Floor(Shown(first), Shown(otherBand)),
            Answers(first, otherBand));
        table.Compare("jobs: the same answer again"_s, 0.005, values, Answers(first, first));
        table.Note(
            "jobs: paint events, every value changed"_s, {}, Paints([&] { Deliver(sameBand); }), "events"_s);
        table.Note(
            "jobs: paint events, the same answer again"_s, 0, Paints([&] { Deliver(sameBand); }), "events"_s);
        QVariantList oneChanged = sameBand;
        oneChanged[3] = MakeJob(104, 1, SameBand + 1);
        table.Compare("jobs: one job's progress changed"_s, {}, values, Answers(sameBand, oneChanged));
    }

    void MeasureTicks(CostTable& table)
    {
        const Side values
            = Floor(Shown(Jobs(PageSize, 1, LowProgress)), Shown(Jobs(PageSize, 101, SameBand)));
        for (const auto& [tab, name] : {std::pair(1, "tasks"_s), {2, "downloads"_s}}) {
            m_client.Tabs()->setCurrentIndex(tab);
            emit m_renderCore.SubmitListChanged();
            emit m_renderCore.DownloadListChanged();
            m_client.Tabs()->setCurrentIndex(tab);
            Paint();
            table.Compare(QString(name + ": tick, nothing changed"_s), 0.002, values, Tick(tab, [] {}));
            table.Compare(QString(name + ": tick, all progress changed"_s), 0.15, values,
                Tick(tab, [this] { ChangeProgress(); }));
        }
        m_client.Tabs()->setCurrentIndex(0);
    }

    void MeasureCandidates(CostTable& table)
    {
        const QVariantList jobs = Jobs(Candidates, 1, LowProgress);
        const QVector<ShownJob> shown = Shown(jobs);
        FloorWindow floor("com.vtr.setparent"_s, Skin, "twtJobList"_s);
        QWidget* dialog = m_client.uiLoader.Form("com.vtr.setparent"_s);
        floor.Form()->resize(dialog->size());
        floor.Form()->show();
        dialog->show();
        const Side reference {[&] {
                                  floor.Table()->setRowCount(0);
                                  Paint();
                              },
            [&] {
                floor.Fill(shown);
                Paint();
            },
            [&] {
                floor.Table()->setRowCount(0);
                Paint();
            }};
        const Side measured {{},
            [&] {
                m_client.communication.DeliverJobs(jobs, Candidates, 1);
                Paint();
            },
            [&] {
                m_client.communication.DeliverJobs({}, 0, 1);
                Paint();
            }};
        table.Compare("set parent: 1000 candidates"_s, 1.0, reference, measured);
        table.Compare("set parent: 18 candidates"_s, {},
            {reference.prepare,
                [&] {
                    floor.Fill(shown.mid(0, PageSize));
                    Paint();
                },
                reference.settle},
            {{},
                [&] {
                    m_client.communication.DeliverJobs(jobs.mid(0, PageSize), PageSize, 1);
                    Paint();
                },
                measured.settle});
        dialog->hide();
    }

    void MeasureMemory(CostTable& table)
    {
        constexpr int Rounds = 10'000;
        constexpr int RoundsBetweenPaints = 10;
        const QVariantList first = Jobs(PageSize, 1, LowProgress);
        const QVariantList second = Jobs(PageSize, 101, OtherBand);
        const auto round = [&](int number) {
            m_client.Tabs()->setCurrentIndex(number % 3);
            Deliver(number % 2 == 0 ? first : second);
            ChangeProgress();
            m_client.Call("ShowSubmitList");
            m_client.Call("ShowDownloadTasks");
            if (number % RoundsBetweenPaints == 0)
                Paint();
            ForgetRecords();
        };
        for (int number = 0; number < Rounds / 10; ++number)
            round(number);
        const double before = HeapInUse();
        for (int number = 0; number < Rounds; ++number)
            round(number);
        table.Note("heap over 10,000 answers and ticks"_s, 0, (HeapInUse() - before) / 1024, "kB"_s);
    }

    /// Attaches and shows the window, against loading its forms and giving them their style sheets.
    void MeasureStart(CostTable& table)
    {
        const Side reference {{},
            [] {
                std::vector<std::unique_ptr<FloorWindow>> forms;
                for (const char* key : {"qsclient", "setargument", "setparent", "search", "inputdialog"})
                    forms.push_back(
                        std::make_unique<FloorWindow>("com.vtr.%1"_s.arg(QLatin1String(key)), Skin));
                forms.front()->Form()->show();
                Paint();
            },
            {}};
        const Side measured {[this] {
                                 m_client.Service()->Uninitialize();
                                 Paint();
                             },
            [this] {
                QVariant state;
                m_client.Initialize();
                m_client.Service()->Show(state, {});
                Paint();
            },
            [this] {
                m_client.Service()->Uninitialize();
                Paint();
            }};
        table.Compare("start: Initialize and Show"_s, 1.3, reference, measured);
    }

    void MeasureRestarts(CostTable& table)
    {
        constexpr int Rounds = 200;
        const auto round = [this] {
            m_client.Stop();
            Paint();
            m_client.Open();
            Paint();
            ForgetRecords();
        };
        for (int number = 0; number < Rounds / 10; ++number)
            round();
        const double before = HeapInUse();
        for (int number = 0; number < Rounds; ++number)
            round();
        table.Note("heap for each stop and start of the plugin"_s, 0, (HeapInUse() - before) / 1024 / Rounds,
            "kB"_s);
    }

private:
    /// The stand-ins' records would count as growth of the client.
    void ForgetRecords()
    {
        journal.clear();
        m_client.communication.requests.clear();
        m_client.logger.lines.clear();
        m_renderCore.seenEvents.clear();
        m_renderCore.orders.clear();
        for (QStringList* calls :
            {&m_client.uiLoader.calls, &m_client.uiLoader.loadedKeys, &m_renderCore.calls})
            calls->clear();
    }

    /// Without the cache of pixmaps, which Qt fills up to a limit of its own.
    static double HeapInUse()
    {
        QPixmapCache::clear();
        return double(mallinfo2().uordblks);
    }

    /// Shows one page, then the other, in turns.
    Side Floor(const QVector<ShownJob>& first, const QVector<ShownJob>& second)
    {
        return {{},
            [=, isFirst = false]() mutable {
                isFirst = !isFirst;
                m_floor.Fill(isFirst ? first : second);
                Paint();
            },
            {}};
    }

    Side Answers(const QVariantList& first, const QVariantList& second)
    {
        return {{},
            [=, isFirst = false]() mutable {
                isFirst = !isFirst;
                Deliver(isFirst ? first : second);
                Paint();
            },
            {}};
    }

    template <class Change>
    Side Tick(int tab, Change change)
    {
        return {{},
            [=] {
                change();
                QMetaObject::invokeMethod(
                    m_client.Window(), tab == 1 ? "ShowSubmitList" : "ShowDownloadTasks");
                Paint();
            },
            [this] { ForgetRecords(); }};
    }

    void Deliver(const QVariantList& jobs) { m_client.communication.DeliverJobs(jobs, PageSize); }

    void ChangeProgress()
    {
        m_progress = m_progress == LowProgress ? SameBand : LowProgress;
        m_renderCore.SetProgress(m_progress);
    }

    template <class Action>
    static int Paints(Action action)
    {
        Paint();
        const PaintCounter counter;
        action();
        Paint();
        return counter.count;
    }

    FloorWindow m_floor;
    SharedLists m_renderCore;
    Client m_client;
    int m_progress = LowProgress;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle("fusion"_s);
    Skins::Install({});
    CostTable table;
    Bench bench;
    bench.MeasureJobs(table);
    bench.MeasureTicks(table);
    bench.MeasureCandidates(table);
    bench.MeasureMemory(table);
    bench.MeasureStart(table);
    bench.MeasureRestarts(table);
    return table.Conclude(QCoreApplication::arguments());
}
