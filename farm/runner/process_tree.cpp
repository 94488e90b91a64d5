#include "farm/runner/process_tree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QVector>

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace farm::ProcessTree {

namespace {

constexpr std::chrono::seconds LongestEnd {5};
constexpr std::chrono::milliseconds EndPause {5};
// The most processes to look at, in case the tree grows without bounds.
constexpr int MostProcesses = 20'000;

QStringList Entries(const QString& folder)
{
    return QDir(folder).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs | QDir::NoDotAndDotDot);
}

QByteArray Contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The children of all threads of a process that have not been waited for.
/// @param tasks receives the number of threads.
QVector<pid_t> ChildrenOf(pid_t process, int& tasks)
{
    QVector<pid_t> children;
    const QString folder = QStringLiteral("/proc/%1/task").arg(process);
    const QStringList threads = Entries(folder);
    tasks = threads.size();
    for (const QString& thread : threads) {
        const QList<QByteArray> ids
            = Contents(folder + QLatin1Char('/') + thread + QStringLiteral("/children")).split(' ');
        for (const QByteArray& id : ids) {
            if (const int child = id.trimmed().toInt(); child > 0)
                children.append(child);
        }
    }
    return children;
}

/// The number of bytes after a name such as "RssAnon:", which files in /proc state in kB.
std::int64_t BytesIn(const QByteArray& text, const char* name)
{
    constexpr std::int64_t Kibibyte = 1024;
    const int at = text.indexOf(name);
    const int begin = at + int(qstrlen(name));
    return at < 0 ? 0 : text.mid(begin, text.indexOf('k', begin) - begin).trimmed().toLongLong() * Kibibyte;
}

std::int64_t MemoryOf(pid_t process)
{
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    const QByteArray status = Contents(folder + QStringLiteral("status"));
    const std::int64_t own = BytesIn(status, "RssAnon:");
    const std::int64_t shared = BytesIn(status, "RssShmem:");
    if (shared == 0)
        return own;
    // Shared memory counts in proportion for each process, which takes the kernel some time to compute.
    const QByteArray rollup = Contents(folder + QStringLiteral("smaps_rollup"));
    return own + (rollup.contains("Pss_Shmem:") ? BytesIn(rollup, "Pss_Shmem:") : shared);
}

} // namespace

Use Measure()
{
    Use use;
    int tasks = 0;
    use.processes = ChildrenOf(::getpid(), tasks);
    for (int next = 0; next < use.processes.size() && next < MostProcesses; ++next) {
        const pid_t process = use.processes[next];
        use.processes += ChildrenOf(process, tasks);
        use.tasks += tasks;
        use.memory += MemoryOf(process);
    }
    return use;
}

bool Reap(const std::function<void(pid_t, int)>& onEnd)
{
    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(-1, &status, WNOHANG)) > 0)
        onEnd(ended, status);
    return ended == 0;
}

// The children of a killed process become children of this one, so each round reaches one level deeper.
bool End()
{
    const auto deadline = std::chrono::steady_clock::now() + LongestEnd;
    int tasks = 0;
    while (Reap([](pid_t, int) {})) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        const QVector<pid_t> children = ChildrenOf(::getpid(), tasks);
        for (const pid_t child : children) {
            ::kill(-child, SIGKILL); // in case it leads a group
            ::kill(child, SIGKILL);
        }
        std::this_thread::sleep_for(EndPause);
    }
    return true;
}

int TasksOf(uid_t user)
{
    int count = 0;
    const QStringList processes = Entries(QStringLiteral("/proc"));
    for (const QString& process : processes) {
        const QString folder = QStringLiteral("/proc/") + process;
        if (QFileInfo(folder).ownerId() == user)
            count += Entries(folder + QStringLiteral("/task")).size();
    }
    return count;
}

} // namespace farm::ProcessTree
