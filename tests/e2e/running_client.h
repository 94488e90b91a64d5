#pragma once

#include "host/app/client_host.h"
#include "host/app/host_options.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>

constexpr int SignInTime = 60000;  // ms; the farm may make its demo data first
constexpr int RenderTime = 120000; // ms

inline QString BesideProgram(const char* name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

inline bool WriteFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A client with its embedded farm, all of whose data are in one folder.
class RunningClient
{
public:
    /// In the folder, which goes with this object.
    QString Path(const QString& name) const { return m_folder.filePath(name); }

    /// Starts the client, with an account whose password is its name. Returns what went wrong.
    QString Start(const QString& account, const QString& farmProgram = {})
    {
        WriteFile(Path(QStringLiteral("password")), account.toUtf8());
        QStringList arguments {QStringLiteral("quillstar"), QStringLiteral("--config"),
            Path(QStringLiteral("client.ini")), QStringLiteral("--data"), m_folder.path(),
            QStringLiteral("--user"), account, QStringLiteral("--password-file"),
            Path(QStringLiteral("password"))};
        if (!farmProgram.isEmpty())
            arguments += {QStringLiteral("--farm"), farmProgram};
        HostOptions options;
        QString error;
        if (!options.Parse(arguments, &error))
            return error;
        m_account = account;
        m_client = std::make_unique<ClientHost>(options);
        m_client->Start(&error);
        return error;
    }

    void End() { m_client.reset(); }

    ~RunningClient()
    {
        End();
        // The window keeps what it remembers of an account beside the program.
        for (const char* folder : {"data", "Data"})
            QFile::remove(BesideProgram(folder) + QStringLiteral("/embedded_%1.ini").arg(m_account));
    }

private:
    QTemporaryDir m_folder;
    QString m_account;
    std::unique_ptr<ClientHost> m_client;
};

/// Does something once, as soon as it can be done: also while a modal dialog runs. `step` says whether it was done.
class Soon
{
public:
    explicit Soon(std::function<bool()> step)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, step = std::move(step)] {
            m_timer.stop(); // the step may open another dialog
            m_done = step();
            if (!m_done)
                m_timer.start();
        });
        m_timer.start(50);
    }

    bool IsDone() const { return m_done; }

private:
    QTimer m_timer;
    bool m_done = false;
};
