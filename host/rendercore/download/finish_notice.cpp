#include "host/rendercore/download/finish_notice.h"

#include <QDir>
#include <QFileInfo>

FinishNotice::FinishNotice(int gathering, int reading, QObject* parent)
    : QObject(parent)
    , m_gathering(gathering)
    , m_reading(reading)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &FinishNotice::Tell);
}

void FinishNotice::Add(const QString& file, int count)
{
    const QString folder = QFileInfo(file).path();
    if (!m_folders.contains(folder))
        m_folders.append(folder);
    m_file = file;
    m_count += count;
    if (!m_timer.isActive())
        m_timer.start(m_gathering);
}

void FinishNotice::Clear()
{
    m_folders.clear();
    m_count = 0;
}

void FinishNotice::Tell()
{
    if (m_folders.isEmpty())
        return;
    const QString what = Text();
    Clear();
    m_timer.start(m_reading);
    emit Due(what);
}

QString FinishNotice::Text() const
{
    if (m_count == 1)
        return m_file;
    const QString count = QString::number(m_count);
    const QString first = QDir(m_folders.constFirst()).dirName();
    switch (m_folders.size()) {
    case 1:
        return tr("%1: %2 frames").arg(first, count);
    case 2:
        return tr("%1 and %2: %3 frames").arg(first, QDir(m_folders.constLast()).dirName(), count);
    default:
        return tr("%1 jobs: %2 frames").arg(QString::number(m_folders.size()), count);
    }
}
