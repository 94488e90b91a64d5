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

/// Makes the file readable for its owner only; a missing one is created empty.
void MakePrivateFile(const QString& file);
