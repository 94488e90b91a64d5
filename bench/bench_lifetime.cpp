// Measures what the window costs over its life: starting, idling, and the memory that long use and restarts leave behind.
#include "bench/comparison.h"
#include "bench/floor_window.h"
#include "bench/open_client.h"
#include "host/ui/skins.h"

#include <QApplication>
#include <QEventLoop>
#include <QPixmapCache>
#include <QTimer>

#include <malloc.h>

#include <memory>
#include <vector>

namespace {

class Bench : private OpenClient
{
public:
    /// Lets time pass on the tab of local tasks, whose timer ticks each second, and beside a window with timers that do
    /// nothing.
    void MeasureIdleness(CostTable& table)
    {
        constexpr int Turns = 2;
        constexpr int Seconds = 16; // the list of jobs is due within that time
        m_client.SignIn();
        m_client.Tabs()->setCurrentIndex(1);
        emit m_renderCore.SubmitListChanged();
        Idle(1); // the window paints its new tab
        std::vector<QTimer*> running;
        std::vector<std::unique_ptr<QTimer>> bare;
        const QList<QTimer*> timers = m_client.Window()->findChildren<QTimer*>();
        for (QTimer* timer : timers) {
            if (!timer->isActive())
                continue;
            running.push_back(timer);
            bare.push_back(std::make_unique<QTimer>());
            bare.back()->setInterval(timer->interval());
        }
        double client = 0;
        double window = 0;
        for (int turn = 0; turn < Turns; ++turn) {
            client += Idle(Seconds);
            for (QTimer* timer : running)
                timer->stop();
            for (const auto& timer : bare)
                timer->start();
            window += Idle(Seconds);
            for (const auto& timer : bare)
                timer->stop();
            for (QTimer* timer : running)
                timer->start();
        }
        m_client.Tabs()->setCurrentIndex(0);
        table.Note("idle, signed in, against a window with idle timers"_s, 2, client / window, "x"_s);
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
                const auto forms = LoadForms();
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

    /// Stops and starts the plugin, and beside it loads and deletes its forms in plain Qt.
    void MeasureRestarts(CostTable& table)
    {
        // Qt remembers the names of pictures in its cache for half a minute after it has dropped them.
        QPixmapCache::setCacheLimit(0);
        table.Note("heap for each loading of the same forms in plain Qt"_s, {}, Growth([] {
            {
                const auto forms = LoadForms();
                forms.front()->Form()->show();
                Paint();
            }
            Paint();
        }),
            "kB"_s);
        const auto round = [this] {
            m_client.Stop();
            Paint();
            m_client.Open();
            Paint();
            ForgetRecords();
        };
        table.Note("heap for each stop and start of the plugin"_s, 0, Growth(round), "kB"_s);
    }

private:
    /// The processor time that some seconds without a user take.
    static double Idle(int seconds)
    {
        Paint();
        QEventLoop loop;
        QTimer end;
        QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
        end.start(seconds * 1000);
        const double before = ProcessorTime();
        loop.exec();
        return ProcessorTime() - before;
    }

    /// The window's forms in plain Qt.
    static std::vector<std::unique_ptr<FloorWindow>> LoadForms()
    {
        std::vector<std::unique_ptr<FloorWindow>> forms;
        for (const char* key : {"qsclient", "setargument", "setparent", "search", "inputdialog"})
            forms.push_back(std::make_unique<FloorWindow>("com.vtr.%1"_s.arg(QLatin1String(key)), Skin));
        return forms;
    }

    /// The growth of the heap in each round of an action, in kB.
    template <class Action>
    static double Growth(Action action)
    {
        constexpr int Rounds = 200;
        for (int number = 0; number < Rounds / 2; ++number)
            action();
        const double before = HeapInUse();
        for (int number = 0; number < Rounds; ++number)
            action();
        return (HeapInUse() - before) / 1024 / Rounds;
    }

    /// Without the cache of pixmaps, which Qt fills up to a limit of its own.
    static double HeapInUse()
    {
        QPixmapCache::clear();
        return double(mallinfo2().uordblks);
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle("fusion"_s);
    Skins::Install({});
    CostTable table;
    Bench bench;
    bench.MeasureIdleness(table);
    bench.MeasureMemory(table);
    bench.MeasureStart(table);
    bench.MeasureRestarts(table);
    return table.Conclude(QCoreApplication::arguments());
}
