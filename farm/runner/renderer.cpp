#include "farm/runner/renderer.h"

#include "farm/runner/process_tree.h"
#include "farm/runner/system_calls.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <linux/close_range.h>
#include <pwd.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace farm {

namespace {

constexpr int Priority = 10; // yields to the desktop, but does not starve beside a busy program

std::vector<char*> Pointers(const std::vector<QByteArray>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const QByteArray& text : texts)
        pointers.push_back(const_cast<char*>(text.constData())); // exec does not change them
    pointers.push_back(nullptr);
    return pointers;
}

std::array<int, 2> Pipe()
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("cannot create a pipe");
    return ends;
}

void Limit(__rlimit_resource kind, rlim_t most)
{
    rlimit limit {};
    if (::getrlimit(kind, &limit) != 0)
        return;
    limit.rlim_cur = std::min(most, limit.rlim_max);
    limit.rlim_max = limit.rlim_cur;
    ::setrlimit(kind, &limit);
}

QString FindProgram(const QString& program)
{
    const QString found = QStandardPaths::findExecutable(program);
    if (found.isEmpty())
        throw std::runtime_error(
            "the renderer could not be started: " + program.toStdString() + " is not installed");
    return found;
}

} // namespace

Renderer::Renderer(const RunOrder& order)
    : m_order(order)
    , m_program(FindProgram(order.program))
    , m_confinement(order.reach, m_program)
    , m_user(::geteuid())
    , m_group(::getegid())
    , m_runner(::getpid())
{
    if (!order.user.isEmpty() && ::geteuid() == 0)
        FindUser();
    // The limit of the system counts all processes of the user.
    m_tasksBefore = ProcessTree::TasksOf(m_user);
    MakeEnvironment();
}

void Renderer::FindUser()
{
    const passwd* const user = ::getpwnam(QFile::encodeName(m_order.user).constData());
    if (user == nullptr)
        throw std::runtime_error("there is no user " + m_order.user.toStdString() + " on this machine");
    m_user = user->pw_uid;
    m_group = user->pw_gid;
}

// A confined renderer gets only the part of the farm's environment that it needs; its home is the folder that it may
// write to.
void Renderer::MakeEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (m_order.reach.confined) {
        const QProcessEnvironment inherited = environment;
        environment.clear();
        for (const char* name : {"LANG", "LC_ALL", "TZ", "QUILLSTAR_FARM", "QUILLSTAR_RUN"}) {
            if (inherited.contains(QLatin1String(name)))
                environment.insert(QLatin1String(name), inherited.value(QLatin1String(name)));
        }
        // An empty search path would mean the scene's folder.
        const QString folders = ReachableFolders(inherited.value(QStringLiteral("PATH")));
        environment.insert(
            QStringLiteral("PATH"), folders.isEmpty() ? QStringLiteral("/usr/bin:/bin") : folders);
    }
    // The usual folder for temporary files may hold the farm's data and is then inaccessible.
    environment.insert(QStringLiteral("TMPDIR"), m_order.files.OutputFolder());
    if (m_order.reach.confined || m_user != ::geteuid())
        environment.insert(QStringLiteral("HOME"), m_order.files.OutputFolder());
    const QStringList entries = environment.toStringList();
    for (const QString& entry : entries)
        m_environment.push_back(QFile::encodeName(entry));
}

/// The folders of the search path that the renderer can read. It also sees programs that it cannot read, and Blender,
/// for one, would look for its Python beside such a program in a home folder.
QString Renderer::ReachableFolders(const QString& searchPath) const
{
    QStringList folders;
    const QStringList all = searchPath.split(QLatin1Char(':'));
    for (const QString& folder : all) {
        if (m_confinement.Reaches(folder))
            folders.append(folder);
    }
    return folders.join(QLatin1Char(':'));
}

int Renderer::Start()
{
    const auto output = Pipe();
    const auto failure = Pipe();
    m_process = ::fork();
    if (m_process < 0)
        throw std::runtime_error("the renderer could not be started: " + std::string(std::strerror(errno)));
    if (m_process == 0)
        Become(output[1], failure[1]);
    ::close(output[1]);
    ::close(failure[1]);
    // There is nothing to read once exec has closed the other end.
    int error = 0;
    const bool hasFailed = ::read(failure[0], &error, sizeof(error)) == sizeof(error);
    ::close(failure[0]);
    if (hasFailed)
        throw std::runtime_error("the renderer could not be started: " + m_program.toStdString() + ": "
            + std::string(std::strerror(error)));
    ::fcntl(output[0], F_SETFL, O_NONBLOCK);
    return output[0];
}

// This program has one thread, so its child is not restricted to system calls.
void Renderer::Become(int output, int failure) const
{
    ::setpgid(0, 0);
    ::setpriority(PRIO_PROCESS, 0, Priority);
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none {};
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(output, STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    TakeLimits();
    if (TakeUser() && ::chdir(QFile::encodeName(m_order.folder).constData()) == 0 && m_confinement.Enter()) {
        std::vector<QByteArray> arguments {QFile::encodeName(m_program)};
        for (const QString& argument : m_order.arguments)
            arguments.push_back(argument.toUtf8());
        ::execve(arguments.front().constData(), Pointers(arguments).data(), Pointers(m_environment).data());
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(failure, &error, sizeof(error));
    ::_exit(EXIT_FAILURE);
}

void Renderer::TakeLimits() const
{
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, static_cast<rlim_t>(m_order.resources.fileSize));
    if (m_order.resources.memory > 0)
        Limit(RLIMIT_DATA, static_cast<rlim_t>(m_order.resources.memory));
    Limit(
        RLIMIT_NPROC, static_cast<rlim_t>(m_tasksBefore) + static_cast<rlim_t>(m_order.resources.processes));
}

bool Renderer::TakeUser() const
{
    if (m_user != ::geteuid()) {
        const QByteArray name = QFile::encodeName(m_order.user);
        if (::initgroups(name.constData(), m_group) != 0 || ::setresgid(m_group, m_group, m_group) != 0
            || ::setresuid(m_user, m_user, m_user) != 0)
            return false;
    }
    SystemCalls::DropCapabilities();
    // Changing the user would clear this setting.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    return ::getppid() == m_runner;
}

} // namespace farm
