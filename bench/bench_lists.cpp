#include "bench/ratio_reporter.h"
#include "tests/standins/client.h"

#include <ctkPluginContext.h>

#include <QApplication>

#include <map>

namespace {

constexpr int PageSize = 18;
constexpr int TickInterval = 1000; // ms

/// The highest permitted ratio of the cost of a million entries to that of a hundred.
constexpr double Limit = 1.5;

/// Marks a benchmark whose cost may grow: a map has no indices, so after a change the page
/// is counted from one end.
const char* const NotJudged = "*";

enum List { LocalTasks = 1, Downloads = 2 }; // the numbers of their tabs
enum Place { First, Middle, Last };

/// A render core that adds no cost of its own: it returns shared lists of identical tasks.
class SharedLists : public RenderCoreStandIn
{
public:
    QString GetTaskSceneFile(const QString& /*id*/) override { return m_task.sceneFile; }
    QString GetTaskStartTime(const QString& /*id*/) override { return m_task.startTime; }
    QString GetTaskMessage(const QString& /*id*/) override { return m_task.message; }
    int GetTaskStage(const QString& /*id*/) override { return m_task.stage; }
    int GetTaskProgress(const QString& /*id*/) override { return m_task.progress; }
    int GetTaskErrorCode(const QString& /*id*/) override { return m_task.error; }
    QVariantList GetTaskArguments(const QString& /*id*/) override { return m_task.arguments; }
    QStringList GetSubmitTaskIds() override { return m_ids; }
    int GetSubmitTaskCount() override { return m_ids.size(); }

    /// Sets the number of tasks and of downloads. The lists of each number are built once.
    void Resize(int count)
    {
        Lists& lists = m_known[count];
        for (int i = lists.ids.size(); i < count; ++i) {
            lists.ids.append("task-%1"_s.arg(i, 7, 10, QLatin1Char('0')));
            lists.downloads.insert(lists.downloads.end(), lists.ids.last(), m_download);
        }
        m_ids = lists.ids;
        m_first.clear();
        downloads = lists.downloads;
    }

    /// Removes the first task, or restores it at the next call, so that all others move by one place.
    void ShiftTasks()
    {
        if (m_first.isEmpty())
            m_first = m_ids.takeFirst();
        else
            m_ids.prepend(std::exchange(m_first, {}));
    }

private:
    struct Lists
    {
        QStringList ids;
        QVariantMap downloads;
    };

    const Task m_task {{}, "/scenes/shot.ma"_s, "10:00"_s, "message"_s, {}, 4, 40};
    const QVariantMap m_download {{"destFile"_s, "/out/frame.png"_s}, {"srcFile"_s, "farm/frame.png"_s},
        {"jobId"_s, "job"_s}, {"status"_s, 1}, {"progress"_s, 40}};
    std::map<int, Lists> m_known;
    QStringList m_ids;
    QString m_first; ///< the removed task, or empty
};

/// The open window of the built plugin.
class Window
{
public:
    bool Open()
    {
        m_client.leftOut = QStringList {"VTRenderCoreInterface"_s};
        m_client.Start();
        m_client.Context()->registerService({"VTRenderCoreInterface"_s}, &m_renderCore);
        return m_client.Open();
    }

    /// Shows the first, middle or last page of a list with `count` entries.
    void Show(List list, int count, Place place)
    {
        m_renderCore.Resize(count);
        m_client.Tabs()->setCurrentIndex(list);
        ChangeList(list);
        const int pages = (count + PageSize - 1) / PageSize;
        // The page bar never offers that page in one step, so one of its buttons is given the page's number.
        const int page = place == First ? 1 : place == Middle ? pages / 2 : pages;
        m_client.Button("btnPageOne"_s)->setText(QString::number(page));
        m_client.Button("btnPageOne"_s)->click();
        m_isForward = place != Last;
        Settle();
    }

    void ChangeList(List list)
    {
        if (list == LocalTasks)
            emit m_renderCore.SubmitListChanged();
        else
            emit m_renderCore.DownloadListChanged();
    }

    /// Goes to the next page, or back at the next call.
    void ChangePage()
    {
        m_client.Button(m_isForward ? "btnNextPage"_s : "btnPrePage"_s)->click();
        m_isForward = !m_isForward;
    }

    bool Tick() { return m_client.Tick(TickInterval); }

    void ShiftTasks() { m_renderCore.ShiftTasks(); }

    /// Paints, and deletes the widgets that the list released.
    static void Settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    SharedLists m_renderCore;
    Client m_client;
    bool m_isForward = true;
};

Window* window = nullptr;

/// Measures an action on a page of a list.
template <class Action>
void Measure(benchmark::State& state, List list, int count, Place place, Action action)
{
    window->Show(list, count, place);
    action();
    Window::Settle();
    for (auto _ : state) {
        action();
        state.PauseTiming();
        Window::Settle();
        state.ResumeTiming();
    }
}

template <class Action>
void Add(const std::string& what, List list, Action action)
{
    const std::pair<Place, const char*> places[] = {{First, "first"}, {Middle, "middle"}, {Last, "last"}};
    for (const auto& [place, name] : places) {
        for (const int count : {100, 10'000, 1'000'000}) {
            const std::string full = what + "/" + std::to_string(count) + "/" + name;
            benchmark::RegisterBenchmark(full.c_str(),
                [list, action, measured = place, count](
                    benchmark::State& state) { Measure(state, list, count, measured, action); })
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    Window opened;
    window = &opened;
    if (!opened.Open())
        return 2;

    for (const auto& [list, name] : {std::pair(LocalTasks, std::string("tasks")), {Downloads, "downloads"}}) {
        const List measured = list;
        Add(name + " list change", list, [measured] { window->ChangeList(measured); });
        Add(name + " page change", list, [] { window->ChangePage(); });
        Add(name + " page after a change" + (list == Downloads ? NotJudged : ""), list, [measured] {
            window->ChangeList(measured);
            window->ChangePage();
        });
        Add(name + " tick", list, [] { window->Tick(); });
    }
    Add("tasks tick after a shift", LocalTasks, [] {
        window->ShiftTasks();
        window->Tick();
    });
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.Conclude(Limit, NotJudged) ? 0 : 1;
}
