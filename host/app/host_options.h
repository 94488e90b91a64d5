#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// The options of the command line. Folders and files are absolute paths.
struct HostOptions
{
    QUrl server; ///< empty for the configured server or else the embedded farm
    QString configFile;
    QString dataFolder;
    QString user; ///< empty to ask, or for the demo account of the embedded farm
    QString passwordFile;
    bool autoSignIn = true;
    QString skin;     ///< empty for the configured one
    QString language; ///< empty for the configured one
    QString logLevel;
    QString downloadFolder; ///< for accounts that have chosen none; empty for the configured one
    QString pluginFile;
    QString farmProgram;
    bool takeOver = false;    ///< uses data that another machine has left locked
    QString screenshotFolder; ///< empty for no tour of screenshots
    QStringList scenes;       ///< files to submit
    int priority = 0;         ///< of their jobs

    /// Reads the command line, program name first. The application object must exist.
    /// @param error receives an English sentence when the command line is wrong.
    /// @return whether the command line is right. `--help` and `--version` print their text and end the process.
    bool Parse(const QStringList& arguments, QString* error);

    /// @return whether the command line asks only for the help or the version.
    static bool AsksForText(int argc, const char* const* argv);
};

/// @param text is the root URL of a server as the user typed it.
/// @return its URL; empty unless the text is an http or https URL of a host, without user, query or fragment.
QUrl ServerUrl(const QString& text);
