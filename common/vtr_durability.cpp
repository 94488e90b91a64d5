#include "common/vtr_durability.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool SyncOne(const QString& strPath)
{
    const int nHandle = ::open(QFile::encodeName(strPath).constData(), O_RDONLY | O_CLOEXEC);
    if (nHandle < 0)
        return false;
    // EINVAL: the file system cannot sync folders, and need not.
    const bool bSynced = ::fsync(nHandle) == 0 || errno == EINVAL;
    ::close(nHandle);
    return bSynced;
}

} // namespace

bool VTSyncToDisk(const QString& strPath)
{
    // The folder itself may be new, so its entry in the folder above is synced too.
    const QString strFolder = QFileInfo(strPath).absolutePath();
    return SyncOne(strPath) && SyncOne(strFolder) && SyncOne(QFileInfo(strFolder).absolutePath());
}
#else
bool VTSyncToDisk(const QString& strPath)
{
    return QFileInfo::exists(strPath);
}
#endif
