#include "host/process/data_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

namespace {

QString TransferFolder(const QString& path)
{
    return path + QLatin1String("/transfer");
}

void MakePrivateFolder(const QString& folder)
{
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

void MakePrivateFile(const QString& file)
{
    QFile(file).open(QIODevice::ReadWrite);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
}

DataFolder::DataFolder(const QString& path)
    : m_path(path)
    , m_lock(TransferFolder(path) + QLatin1String("/client.lock"))
{
    // The permissions of an existing folder stay, since it may serve other purposes too.
    if (!QFileInfo::exists(path))
        MakePrivateFolder(path);
    MakePrivateFolder(TransferFolder(path));
    MakePrivateFolder(path + QLatin1String("/logs"));
    // An empty file is a database without tables, and SQLite's other files get the permissions of the database.
    for (const char* name : {"/transfer/submissions.sqlite", "/transfer/downloads.sqlite"})
        MakePrivateFile(path + QLatin1String(name));
    m_lock.setStaleLockTime(0);
}

bool DataFolder::Lock(bool takeOver, QString* error)
{
    if (m_lock.tryLock(0) || m_lock.error() != QLockFile::LockFailedError)
        return true;
    qint64 process = 0;
    QString machine;
    QString program;
    const bool isKnown = m_lock.getLockInfo(&process, &machine, &program);
    const bool isElsewhere = isKnown && !machine.isEmpty() && machine != QSysInfo::machineHostName();
    if (takeOver && isElsewhere && m_lock.removeStaleLockFile() && m_lock.tryLock(0))
        return true;
    *error = QStringLiteral("the client is already running with the data in %1").arg(m_path);
    if (isKnown)
        *error += QStringLiteral(": process %1 on %2").arg(QString::number(process), machine);
    if (isElsewhere)
        *error += QStringLiteral("; if it has ended, start this one with --take-over");
    return false;
}
