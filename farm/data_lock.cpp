#include "farm/data_lock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <unistd.h>

namespace farm {

namespace {

constexpr qint64 LongestHolder = 256; // bytes

QString ThisMachine()
{
    return QSysInfo::machineHostName();
}

} // namespace

DataLock::DataLock(const QString& folder, int waitMs, bool takeOver)
    : m_path(QFile::encodeName(QDir(folder).filePath(QStringLiteral("farm.lock"))))
{
    Open();
    bool isLocked = Wait(waitMs);
    const QString holder = isLocked ? QString() : Holder();
    // A lock of this machine belongs to a running process; only another machine can have left one behind.
    if (!isLocked && takeOver && !holder.isEmpty()
        && !holder.endsWith(QString(QLatin1Char(' ') + ThisMachine()))) {
        ::close(m_file);
        ::unlink(m_path.constData());
        Open();
        isLocked = Wait(0);
    }
    if (!isLocked) {
        ::close(m_file);
        throw std::runtime_error("another farm is using the data folder: "
            + (holder.isEmpty() ? "an unknown process" : holder.toStdString()));
    }
    WriteHolder();
}

DataLock::~DataLock()
{
    ::close(m_file);
}

void DataLock::Open()
{
    m_file = ::open(m_path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_file < 0)
        throw std::runtime_error(
            "cannot write to the data folder: " + m_path.toStdString() + ": " + std::strerror(errno));
}

bool DataLock::Wait(int waitMs) const
{
    const QDeadlineTimer deadline(waitMs);
    while (::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(20);
    }
    return true;
}

// The holder's name serves messages only, so a failure to write it does no harm.
void DataLock::WriteHolder() const
{
    const QByteArray holder = QStringLiteral("process %1 on %2")
                                  .arg(QString::number(QCoreApplication::applicationPid()), ThisMachine())
                                  .toUtf8();
    [[maybe_unused]] const bool isWritten = ::ftruncate(m_file, 0) == 0
        && ::pwrite(m_file, holder.constData(), std::size_t(holder.size()), 0) == holder.size();
}

QString DataLock::Holder() const
{
    QByteArray holder(LongestHolder, '\0');
    const ssize_t count = ::pread(m_file, holder.data(), std::size_t(holder.size()), 0);
    return QString::fromUtf8(holder.left(int(std::max<ssize_t>(count, 0)))).simplified();
}

} // namespace farm
