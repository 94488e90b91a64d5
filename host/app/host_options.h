#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// What the command line asks for. Folders and files are absolute paths.
struct HostOptions
{
    QUrl server; ///< empty: as configured, else the embedded farm
    QString configFile;
    QString dataFolder;
    QString user; ///< empty: ask for it, or the demo account where the farm is the embedded one
    QString passwordFile;
    bool autoSignIn = true;
    QString skin;     ///< empty: as configured
    QString language; ///< likewise
    QString logLevel;
    QString downloadFolder; ///< for accounts that have chosen none; empty: as configured
    QString pluginFile;
    QString farmProgram;
    QString screenshotFolder; ///< empty: no screenshots
    QStringList scenes;       ///< to be submitted

    /// Reads the command line, program name first, on the application object, which must exist.
    /// @param error receives an English sentence where the command line is wrong.
    /// @return whether it could be read. `--help` and `--version` print and end the process.
    bool Parse(const QStringList& arguments, QString* error);
};

/// The root of a server as the user wrote it: http or https with a host name; empty where it is none.
QUrl ServerUrl(const QString& text);
