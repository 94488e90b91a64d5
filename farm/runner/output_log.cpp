#include "farm/runner/output_log.h"

#include <QStringList>

namespace farm {

namespace {

constexpr qint64 LongestFile = qint64 {16} << 20; // bytes

} // namespace

OutputLog::OutputLog(const QString& path)
    : m_file(path)
{
    m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

void OutputLog::Add(const QByteArray& bytes)
{
    m_tail += bytes;
    m_tail = m_tail.right(LongEnd);
    if (!m_file.isOpen())
        return;
    const QByteArray fitting
        = bytes.left(int(qBound(qint64(0), LongestFile - m_file.pos(), qint64(bytes.size()))));
    m_leftOut += bytes.size() - fitting.size();
    m_file.write(fitting);
}

void OutputLog::Finish()
{
    if (m_leftOut > 0)
        m_file.write("\n[" + QByteArray::number(m_leftOut)
            + " bytes are left out here; the output ended with]\n" + m_tail);
    m_file.close();
}

QString OutputLog::End(int most) const
{
    const QByteArray tail = m_tail.right(most);
    // The first line is incomplete when output was cut off.
    const int cut = tail.size() < most ? 0 : tail.indexOf('\n') + 1;
    QStringList lines = QString::fromUtf8(tail.mid(cut)).trimmed().split(QLatin1Char('\n'));
    // Renderers end their reports of progress with carriage returns.
    for (QString& line : lines)
        line = line.section(QLatin1Char('\r'), -1, -1, QString::SectionSkipEmpty).remove(QChar::Null);
    return lines.join(QLatin1Char('\n'));
}

} // namespace farm
