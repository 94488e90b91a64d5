#pragma once

#include "host/rendercore/submit/scene_analysis.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <chrono>
#include <map>
#include <memory>
#include <optional>

class BoundProcess;

/// Runs the renderers' own programs to report the files of scenes, one at a time, because each may take much memory. No
/// function waits for a program. Belongs to one thread.
class SceneReporter
{
public:
    explicit SceneReporter(std::chrono::milliseconds timeLimit = std::chrono::minutes(10));
    /// Ends the program that runs.
    ~SceneReporter();
    SceneReporter(const SceneReporter&) = delete;
    SceneReporter& operator=(const SceneReporter&) = delete;

    /// Starts the program of the scene's kind, or checks on it: call it again until there is a report. Throws
    /// TaskFailure when there will be none.
    /// @param task identifies the caller.
    /// @return nothing while this scene or another one is being read.
    std::optional<QByteArray> Ask(qint64 task, const QString& scene);

    /// Cancels the report for a task.
    void Forget(qint64 task);
    void ForgetAll();

private:
    /// A scene that is being read.
    struct Reading
    {
        qint64 task = 0;
        const SceneKind* kind = nullptr;
        QTemporaryDir folder;
        std::unique_ptr<BoundProcess> process;
        QElapsedTimer clock;

        QString Report() const { return folder.filePath(QStringLiteral("report.json")); }
    };

    void Begin(qint64 task, const QString& scene);
    void LookAfter();

    std::chrono::milliseconds m_timeLimit;
    std::unique_ptr<Reading> m_reading;
    /// Reports by task, until they are asked for. An empty one means that there will be none.
    std::map<qint64, QByteArray> m_reports;
};
