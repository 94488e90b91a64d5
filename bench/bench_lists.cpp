#include "bench/comparison.h"
#include "bench/shared_lists.h"
#include "tests/standins/client.h"

#include <ctkPluginContext.h>

#include <QApplication>

namespace {

constexpr int PageSize = 18;
constexpr int TickInterval = 1000; // ms

constexpr int Few = 100;
constexpr int Many = 1'000'000;

/// The highest ratio of the cost of many entries to that of few that is good enough.
constexpr double Goal = 1.5;

enum List { LocalTasks = 1, Downloads = 2 }; // the numbers of their tabs
enum Place { First, Middle, Last };

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

/// Compares an action on a page of a million entries with the same on a hundred.
template <class Action>
void Compare(CostTable& table, const QString& what, std::optional<double> goal, List list, Action action)
{
    const std::pair<Place, QString> places[]
        = {{First, "first page"_s}, {Middle, "middle page"_s}, {Last, "last page"_s}};
    for (const auto& [place, name] : places) {
        const auto sideOf = [list, action, shown = place](int count) {
            return Side {[=] {
                             window->Show(list, count, shown);
                             action();
                             Window::Settle();
                         },
                action, Window::Settle};
        };
        table.Compare(QString(what + ", "_s + name), goal, sideOf(Few), sideOf(Many));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Window opened;
    window = &opened;
    if (!opened.Open())
        return 2;

    CostTable table;
    for (const auto& [shown, name] : {std::pair(LocalTasks, "tasks"_s), {Downloads, "downloads"_s}}) {
        const List list = shown;
        Compare(table, QString(name + ": list change"_s), Goal, list, [list] { window->ChangeList(list); });
        Compare(table, QString(name + ": page change"_s), Goal, list, [] { window->ChangePage(); });
        Compare(table, QString(name + ": page after a change"_s), Goal, list, [list] {
            window->ChangeList(list);
            window->ChangePage();
        });
        Compare(table, QString(name + ": tick"_s), Goal, list, [] { window->Tick(); });
    }
    Compare(table, "tasks: tick after a shift"_s, Goal, LocalTasks, [] {
        window->ShiftTasks();
        window->Tick();
    });
    return table.Conclude(QCoreApplication::arguments());
}
