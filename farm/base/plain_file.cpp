#include "farm/base/plain_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace farm {

bool OpenPlainFile(QFile& file, const QString& path)
{
    const int handle
        = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    struct stat found = {};
    if (handle >= 0 && ::fstat(handle, &found) == 0 && S_ISREG(found.st_mode)
        && file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    if (handle >= 0)
        ::close(handle);
    return false;
}

} // namespace farm
