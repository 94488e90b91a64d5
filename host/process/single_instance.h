#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QStringList>

class QLocalSocket;

/// Allows one client for each user and configuration. A second start shows the window of the first and passes its scenes
/// on.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// @param configFile is an absolute path; together with the user's home folder it identifies the client.
    explicit SingleInstance(const QString& configFile, QObject* parent = nullptr);

    /// @return false when another client with the same identity is running.
    bool IsFirst() const { return m_first; }

    /// Asks the running client to show its window and to submit these scenes.
    /// @return whether it could be reached.
    bool ActivateFirst(const QStringList& scenes = {}, int priority = 0) const;

signals:
    /// Another start of the client asked this one to show its window.
    /// @param scenes absolute paths of the scenes to submit. @param priority of their jobs.
    void Activated(const QStringList& scenes, int priority);

private:
    void ReadScenes(QLocalSocket* caller);

    QString m_name;
    QLockFile m_lock;
    QLocalServer m_server;
    bool m_first;
};
