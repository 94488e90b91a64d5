#pragma once

#include "host/app/client_host.h"
#include "tests/farm/farm_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>

#include <memory>

inline QString BesideProgram(const QString& name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
}

/// @return the widget of this name in whichever window of the client holds it; null while there is none.
template <typename Widget>
Widget* Find(const char* name)
{
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (auto* found = window->findChild<Widget*>(QLatin1String(name)))
            return found;
    }
    return nullptr;
}

/// Presses a button of the message box that is open, if there is one.
/// @return whether there is one and its text contains `text`.
inline bool Answer(const QString& text, const char* button)
{
    const QWidget* box = QApplication::activeModalWidget();
    if (!box)
        return false;
    const QString shown = box->findChild<QLabel*>("lblText"_s)->text()
        + box->findChild<QPlainTextEdit*>("txtDetail"_s)->toPlainText();
    box->findChild<QAbstractButton*>(QLatin1String(button))->click();
    return shown.contains(text);
}

/// A client with its embedded farm, all of whose data are in one folder.
class RunningClient
{
public:
    ~RunningClient()
    {
        Stop();
        // The window keeps an account's files beside the program.
        for (const char* folder : {"data/", "Data/"})
            QFile::remove(BesideProgram(QLatin1String(folder) + "embedded_%1.ini"_s.arg(m_account)));
    }

    /// @return a path in the folder of the client's data, which is removed with this object.
    QString Path(const QString& name) const { return m_folder.filePath(name); }

    /// Creates the data of a farm that is not running yet, with one account, whose password is its name.
    std::unique_ptr<FarmData> PrepareFarm(const char* account) const
    {
        QDir().mkdir(Path("farm"_s));
        auto data = std::make_unique<FarmData>(Path("farm"_s));
        data->account = data->Add(account, account, 50'000'000);
        return data;
    }

    /// Starts the client and signs in with an account whose password is its name.
    /// @return why it could not start; empty when it did.
    QString Start(const QString& account, const QString& farmProgram = BesideProgram("quillstar-farmd"_s))
    {
        m_account = account;
        WriteFile(Path("password"_s), account.toUtf8());
        const QStringList arguments {"quillstar"_s, "--config"_s, Path("client.ini"_s), "--data"_s,
            m_folder.path(), "--user"_s, account, "--password-file"_s, Path("password"_s), "--farm"_s,
            farmProgram};
        HostOptions options;
        QString error;
        if (options.Parse(arguments, &error)) {
            m_client = std::make_unique<ClientHost>(options);
            m_client->Start(&error);
        }
        return error;
    }

    void Submit(const QStringList& scenes) { m_client->Activate(scenes); }
    void Stop() { m_client.reset(); }

private:
    QTemporaryDir m_folder;
    QString m_account;
    std::unique_ptr<ClientHost> m_client;
};
