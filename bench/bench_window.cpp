// Compares the window with plain Qt that shows the same, painting included.
#include "bench/comparison.h"
#include "bench/floor_window.h"
#include "bench/open_client.h"
#include "common/vtr_codetables.h"
#include "host/ui/skins.h"

#include <QApplication>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int Candidates = 1000;

/// The same jobs in the form that the plain-Qt window shows.
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

/// Notes how long events wait, in processor time, while it lives.
class EventWatch : public QObject
{
public:
    EventWatch() { startTimer(0); }
    double Longest()
    {
        Note();
        return m_longest;
    }

protected:
    void timerEvent(QTimerEvent* /*event*/) override { Note(); }

private:
    void Note()
    {
        const double now = ProcessorTime();
        m_longest = std::max(m_longest, now - std::exchange(m_last, now));
    }

    double m_last = ProcessorTime();
    double m_longest = 0;
};

/// The window and its plain-Qt counterpart, both on the screen in the same size.
class Bench : private OpenClient
{
public:
    Bench()
        : m_floor("com.vtr.qsclient"_s, Skin, "twtMyRender"_s)
    {
        m_floor.Form()->resize(m_client.Form()->size());
        m_floor.Form()->show();
        for (int column = 0; column < FloorWindow::Columns; ++column)
            m_floor.Table()->setColumnWidth(column, m_client.Table("twtMyRender"_s)->columnWidth(column));
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

    /// Loads candidates while events wait, and takes the longest time for which they waited.
    void MeasureStretches(CostTable& table)
    {
        constexpr int Loads = 9;
        const QVariantList jobs = Jobs(Candidates, 1, LowProgress);
        QWidget* dialog = m_client.uiLoader.Form("com.vtr.setparent"_s);
        dialog->show();
        std::vector<double> stretches;
        for (int load = 0; load < Loads; ++load) {
            Paint();
            EventWatch watch;
            m_client.communication.DeliverJobs(jobs, Candidates, 1);
            Paint();
            stretches.push_back(watch.Longest());
        }
        dialog->hide();
        m_client.communication.DeliverJobs({}, 0, 1);
        Paint();
        std::sort(stretches.begin(), stretches.end());
        table.Note("set parent: longest stretch without events, 1000 candidates"_s, 16, // a frame at 60 Hz
            stretches[Loads / 2] / 1000, "ms"_s);
    }

private:
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
    bench.MeasureStretches(table);
    return table.Conclude(QCoreApplication::arguments());
}
