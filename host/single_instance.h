#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

/// One client for each user and configuration: a second start only brings the first one forward.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// @param configFile absolute path; with the user's account it makes up the identity.
    explicit SingleInstance(const QString& configFile, QObject* parent = nullptr);

    /// False where another client with this identity is running.
    bool IsFirst() const { return m_first; }

    /// Asks the client that is running to come forward. Returns whether it could be reached.
    bool CallFirst() const;

signals:
    /// Another start of the client asked for this one.
    void Called();

private:
    QString m_name;
    QLockFile m_lock;
    QLocalServer m_server;
    bool m_first;
};
