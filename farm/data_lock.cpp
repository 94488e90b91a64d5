#include "farm/data_lock.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <unistd.h>

namespace farm {

DataLock::DataLock(const QString& folder, int waitMs)
{
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(QStringLiteral("farm.lock")));
    m_file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_file < 0)
        throw std::runtime_error("cannot write to the data folder");
    const QDeadlineTimer deadline(waitMs);
    while (::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        if (deadline.hasExpired()) {
            ::close(m_file);
            throw std::runtime_error("another farm is using the data folder");
        }
        QThread::msleep(20);
    }
}

DataLock::~DataLock()
{
    ::close(m_file);
}

} // namespace farm
