#include "farm/runner/confinement.h"

#include "farm/runner/hidden_paths.h"
#include "farm/runner/system_calls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <fcntl.h>
#include <linux/landlock.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace farm {

namespace {

constexpr quint64 ReadFiles
    = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
// The rights to create links and devices are left out on purpose.
constexpr quint64 WriteFiles = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR
    | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR
    | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_DIR;
constexpr quint64 UseDevice = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE;
constexpr quint64 FileAccesses
    = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE;
// All access rights of the first version of Landlock.
constexpr quint64 FirstAccesses = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
// Later versions of Landlock, some of them newer than the headers of this system.
constexpr quint64 MoveFiles = quint64 {1} << 13;
constexpr int VersionWithMove = 2;
constexpr quint64 TruncateFiles = quint64 {1} << 14;
constexpr int VersionWithTruncate = 3;
constexpr quint64 ScopeSignals = quint64 {1} << 1;
constexpr int VersionWithScopes = 6;

struct Attributes
{
    quint64 files = 0;
    quint64 network = 0;
    quint64 scopes = 0;
};

constexpr const char* SystemPaths[]
    = {"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/etc/ld.so.cache", "/etc/ld.so.preload",
        "/etc/alternatives", "/etc/fonts", "/etc/localtime", "/etc/povray"};
constexpr const char* Devices[] = {"/dev/null", "/dev/zero", "/dev/random", "/dev/urandom"};

int Version()
{
    static const int version = static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
    return version;
}

quint64 Truncate()
{
    return Version() >= VersionWithTruncate ? TruncateFiles : 0;
}

/// All rights that the kernel knows. Unless the right to move files to other folders is among those handled, the kernel
/// denies it to everybody.
quint64 AllAccesses()
{
    return FirstAccesses | Truncate() | (Version() >= VersionWithMove ? MoveFiles : 0);
}

QStringList NamesOfHidden(const QString& folder)
{
    const QString path = QFileInfo(folder).canonicalFilePath();
    if (path.isEmpty())
        return {};
    QFile mounts(QStringLiteral("/proc/self/mountinfo"));
    return NamesOf(path, mounts.open(QIODevice::ReadOnly) ? mounts.readAll() : QByteArray());
}

} // namespace

bool Confinement::IsSupported()
{
    return Version() > 0;
}

Confinement::Confinement(const Reach& reach, const QString& program)
    : m_hidden(NamesOfHidden(reach.hidden))
    , m_confined(reach.confined)
{
    if (!IsSupported())
        return;
    Attributes attributes;
    attributes.files = reach.confined ? FirstAccesses | Truncate() : AllAccesses();
    // A renderer must not end the program that watches it, nor the farm.
    attributes.scopes = ScopeSignals;
    const std::size_t size = Version() >= VersionWithScopes ? sizeof(attributes) : sizeof(attributes.files);
    m_ruleset = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, size, 0));
    if (m_ruleset < 0)
        throw std::runtime_error("the renderer cannot be confined");
    if (reach.confined)
        AllowSystem(program);
    else
        AllowAround(QStringLiteral("/"), AllAccesses());
    Allow(program, ReadFiles);
    for (const QString& path : reach.readable)
        AllowChosen(path, ReadFiles);
    for (const QString& path : reach.writable)
        AllowChosen(path, (reach.confined ? WriteFiles : AllAccesses()) | Truncate());
}

Confinement::~Confinement()
{
    if (m_ruleset >= 0)
        ::close(m_ruleset);
}

void Confinement::AllowSystem(const QString& program)
{
    for (const char* path : SystemPaths)
        AllowAround(QString::fromLatin1(path), ReadFiles);
    for (const char* device : Devices)
        Allow(QString::fromLatin1(device), UseDevice | Truncate());
    AllowAround(QFileInfo(program).canonicalPath(), ReadFiles);
}

// Landlock cannot exclude a folder from an allowed one. So the folders above the hidden one are not allowed themselves,
// but everything else that they contain now. What is created in them later cannot be reached.
void Confinement::AllowAround(const QString& path, quint64 access)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    bool holdsHidden = false;
    for (const QString& hidden : std::as_const(m_hidden)) {
        if (IsWithin(real, hidden))
            return;
        holdsHidden = holdsHidden || IsWithin(hidden, real);
    }
    if (!holdsHidden) {
        Allow(real, access);
        return;
    }
    const QFileInfoList entries
        = QDir(real).entryInfoList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        // A link needs no rule: its target has one.
        if (!entry.isSymLink())
            AllowAround(entry.filePath(), access);
    }
}

void Confinement::AllowChosen(const QString& path, quint64 access)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    for (const QString& hidden : std::as_const(m_hidden)) {
        if (real != hidden && IsWithin(real, hidden)) {
            Allow(real, access);
            return;
        }
    }
    AllowAround(path, access);
}

// A path that does not exist needs no rule.
void Confinement::Allow(const QString& path, quint64 access)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC);
    if (file < 0)
        return;
    struct stat status
    {
    };
    const bool isFolder = ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
    landlock_path_beneath_attr rule {};
    rule.allowed_access = isFolder ? access : access & (FileAccesses | TruncateFiles);
    rule.parent_fd = file;
    const long result = ::syscall(SYS_landlock_add_rule, m_ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    ::close(file);
    if (result != 0)
        throw std::runtime_error("the renderer cannot be confined");
    m_allowed.append(path);
}

bool Confinement::Reaches(const QString& path) const
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return m_ruleset < 0 || std::any_of(m_allowed.begin(), m_allowed.end(), [&real](const QString& allowed) {
        return IsWithin(real, allowed);
    });
}

bool Confinement::Enter() const
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    if (m_ruleset >= 0 && ::syscall(SYS_landlock_restrict_self, m_ruleset, 0) != 0)
        return false;
    return !m_confined || SystemCalls::ForbidAttributes();
}

} // namespace farm
