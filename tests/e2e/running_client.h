#pragma once

#include "farm/accounts/account_store.h"
#include "host/app/client_host.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTemporaryDir>

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
        // The window keeps what it remembers of an account beside the program.
        for (const char* folder : {"data/", "Data/"})
            QFile::remove(BesideProgram(QLatin1String(folder) + "embedded_%1.ini"_s.arg(m_account)));
    }

    /// @return a path in the folder of the client's data, which is removed with this object.
    QString Path(const QString& name) const { return m_folder.filePath(name); }

    /// Opens the database of a farm that is not running yet and adds an account whose password is its name.
    std::unique_ptr<farm::Database> PrepareFarm(const QString& account, std::int64_t* id)
    {
        QDir().mkdir(Path("farm"_s));
        auto database = std::make_unique<farm::Database>(Path("farm/farm.sqlite"_s), farm::Schema());
        *id = farm::AccountStore(*database, 3600)
                  .Add({account, account + "@example.org"_s, account, false, 50'000'000, 0});
        return database;
    }

    /// Starts the client and signs in with an account whose password is its name.
    /// @return why it could not start; empty when it did.
    QString Start(const QString& account, const QString& farmProgram = BesideProgram("quillstar-farmd"_s))
    {
        m_account = account;
        WriteFile(Path("password"_s), account.toUtf8());
        HostOptions options;
        QString error;
        if (options.Parse(
                {"quillstar"_s, "--config"_s, Path("client.ini"_s), "--data"_s, m_folder.path(), "--user"_s,
                    account, "--password-file"_s, Path("password"_s), "--farm"_s, farmProgram},
                &error)) {
            m_client = std::make_unique<ClientHost>(options);
            m_client->Start(&error);
        }
        return error;
    }

    void Stop() { m_client.reset(); }

private:
    QTemporaryDir m_folder;
    QString m_account;
    std::unique_ptr<ClientHost> m_client;
};
