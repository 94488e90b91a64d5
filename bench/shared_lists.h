#pragma once

#include "tests/standins/stand_ins.h"

#include <map>

/// A render core that adds no cost of its own: it returns shared lists of identical tasks and, like the host's, knows
/// the order of its downloads.
class SharedLists : public RenderCoreStandIn
{
    Q_OBJECT

public:
    Q_INVOKABLE QString DownloadTaskIdAt(int index) const { return m_ids.value(index); }

    QString GetTaskSceneFile(const QString& /*id*/) override { return m_task.sceneFile; }
    QString GetTaskStartTime(const QString& /*id*/) override { return m_task.startTime; }
    QString GetTaskMessage(const QString& /*id*/) override { return m_task.message; }
    int GetTaskStage(const QString& /*id*/) override { return m_task.stage; }
    int GetTaskProgress(const QString& /*id*/) override { return m_task.progress; }
    int GetTaskErrorCode(const QString& /*id*/) override { return m_task.error; }
    QVariantList GetTaskArguments(const QString& /*id*/) override { return m_task.arguments; }
    QString GetTaskUploadText(const QString& /*id*/) override { return m_task.uploadText; }
    QStringList GetSubmitTaskIds() override { return m_ids; }
    int GetSubmitTaskCount() override { return m_ids.size(); }

    /// Sets the number of tasks and of downloads. The lists of each number are built once.
    void Resize(int count)
    {
        Lists& lists = m_known[count];
        for (int i = lists.ids.size(); i < count; ++i) {
            lists.ids.append("task-%1"_s.arg(i, 7, 10, QLatin1Char('0')));
            lists.downloads.insert(lists.downloads.cend(), lists.ids.last(), m_download);
        }
        m_ids = lists.ids;
        m_first.clear();
        downloads = lists.downloads;
    }

    /// Changes the progress of all tasks and downloads.
    void SetProgress(int percent)
    {
        m_task.progress = percent;
        for (QVariant& download : downloads) {
            QVariantMap map = download.toMap();
            map.insert("progress"_s, percent);
            download = map;
        }
    }

    /// Removes the first task, or restores it at the next call, so that all others move by one place.
    void ShiftTasks()
    {
        if (m_first.isEmpty())
            m_first = m_ids.takeFirst();
        else
            m_ids.prepend(std::exchange(m_first, {}));
    }

private:
    struct Lists
    {
        QStringList ids;
        QVariantMap downloads;
    };

    Task m_task {{}, "/scenes/shot.ma"_s, "10:00"_s, "message"_s, {}, 4, 40};
    const QVariantMap m_download {{"destFile"_s, "/out/frame.png"_s}, {"srcFile"_s, "farm/frame.png"_s},
        {"jobId"_s, "job"_s}, {"status"_s, 1}, {"progress"_s, 40}};
    std::map<int, Lists> m_known;
    QStringList m_ids;
    QString m_first; ///< the removed task, or empty
};
