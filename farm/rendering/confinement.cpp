#include "farm/rendering/confinement.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <linux/landlock.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

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
constexpr quint64 TruncateFiles = quint64 {1} << 14;
constexpr int VersionWithTruncate = 3;

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

} // namespace

bool Confinement::IsSupported()
{
    return Version() > 0;
}

Confinement::Confinement(const Reach& reach, const QString& program)
{
    if (!IsSupported())
        return;
    landlock_ruleset_attr attributes {};
    attributes.handled_access_fs = FirstAccesses | Truncate();
    m_ruleset = static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, &attributes, sizeof(attributes.handled_access_fs), 0));
    if (m_ruleset < 0)
        throw std::runtime_error("the renderer cannot be confined");
    for (const char* path : SystemPaths)
        Allow(QString::fromLatin1(path), ReadFiles);
    for (const char* device : Devices)
        Allow(QString::fromLatin1(device), UseDevice | Truncate());
    Allow(QFileInfo(program).canonicalPath(), ReadFiles);
    for (const QString& path : reach.readable)
        Allow(path, ReadFiles);
    for (const QString& path : reach.writable)
        Allow(path, WriteFiles | Truncate());
}

Confinement::~Confinement()
{
    if (m_ruleset >= 0)
        ::close(m_ruleset);
}

// A path that does not exist needs no rule.
void Confinement::Allow(const QString& path, quint64 access) const
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
}

bool Confinement::Enter() const
{
    return m_ruleset < 0
        || (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
            && ::syscall(SYS_landlock_restrict_self, m_ruleset, 0) == 0);
}

} // namespace farm
