#pragma once

#include <QLockFile>
#include <QString>

/// The folder with the client's data, reserved for one client and closed to the other users of the machine.
class DataFolder
{
public:
    explicit DataFolder(const QString& path);

    /// @param takeOver ignores the lock of another machine.
    /// @param error receives an English sentence, which names the holder, when another client uses the data.
    bool Lock(bool takeOver, QString* error);

private:
    QString m_path;
    QLockFile m_lock;
};

/// Lets nobody but the user read the file, which is created empty when it is missing.
void MakePrivateFile(const QString& file);
