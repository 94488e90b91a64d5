#pragma once

#include <QMap>
#include <QStringList>

#include <optional>

/// Reports that wait for the user's answer, one per task, in the order of the task ids.
///
/// Only one question is open at a time: `Take` returns nothing until `Answered` is called for the previous report.
class VTQuestionQueue
{
public:
    struct Report
    {
        QString strTaskId;
        QStringList lstFile;
    };

    /// A later report for the same task replaces the earlier one.
    void Add(const QString& strTaskId, const QStringList& lstFile) { m_mapFiles.insert(strTaskId, lstFile); }
    void Clear() { m_mapFiles.clear(); }
    bool IsEmpty() const { return m_mapFiles.isEmpty(); }

    /// Removes and returns the next report.
    std::optional<Report> Take()
    {
        if (m_bAsking || m_mapFiles.isEmpty())
            return std::nullopt;
        m_bAsking = true;
        const Report report {m_mapFiles.firstKey(), m_mapFiles.first()};
        m_mapFiles.erase(m_mapFiles.begin());
        return report;
    }
    void Answered() { m_bAsking = false; }

private:
    QMap<QString, QStringList> m_mapFiles;
    bool m_bAsking = false;
};
