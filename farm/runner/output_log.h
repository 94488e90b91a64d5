#pragma once

#include <QByteArray>
#include <QFile>

namespace farm {

/// Writes a renderer's output to a file and remembers its end.
class OutputLog
{
public:
    /// The length of the frame's log: the end of a renderer's output usually names the error.
    static constexpr int LongEnd = 4000; // bytes
    /// The length of the part that goes into the message of a failed job.
    static constexpr int ShortEnd = 400; // bytes

    /// Goes on without the file if it cannot be written: the frame matters more.
    explicit OutputLog(const QString& path);

    void Add(const QByteArray& bytes);
    /// Adds the end of an output whose middle was left out of the file.
    void Finish();
    /// The last lines of the output, at most this many bytes in all.
    QString End(int most) const;

private:
    QFile m_file;
    qint64 m_leftOut = 0;
    QByteArray m_tail;
};

} // namespace farm
