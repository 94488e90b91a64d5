#pragma once

#include <QByteArray>
#include <QFile>

namespace farm {

/// Writes what a renderer says to a file and remembers its end.
class OutputLog
{
public:
    /// The end of a renderer's output usually names the error, so this much of it becomes the log of the frame.
    static constexpr int LongEnd = 4000; // bytes
    /// This much becomes part of the message of a job that fails.
    static constexpr int ShortEnd = 400; // bytes

    /// A file that cannot be written is left out: the frame matters more.
    explicit OutputLog(const QString& path);

    void Add(const QByteArray& bytes);
    /// Adds the end of an output of which the middle was too long for the file.
    void Finish();
    /// The last lines of the output, which together have at most so many bytes.
    QString End(int most) const;

private:
    QFile m_file;
    qint64 m_leftOut = 0;
    QByteArray m_tail;
};

} // namespace farm
