#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QStringList>

class QLocalSocket;

/// One client for each user and configuration: a second start only brings the first one forward and
/// hands it its scenes.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// @param configFile absolute path; with the user's account it makes up the identity.
    explicit SingleInstance(const QString& configFile, QObject* parent = nullptr);

    /// False where another client with this identity is running.
    bool IsFirst() const { return m_first; }

    /// Asks the client that is running to come forward and to take these scenes. Returns whether it could be reached.
    bool CallFirst(const QStringList& scenes = {}) const;

signals:
    /// Another start of the client asked for this one.
    /// @param scenes that it brought, as absolute paths.
    void Called(const QStringList& scenes);

private:
    void Listen(QLocalSocket* caller);

    QString m_name;
    QLockFile m_lock;
    QLocalServer m_server;
    bool m_first;
};
