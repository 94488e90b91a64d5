#pragma once

#include <QString>

/// Marks a write of QSettings to a file as under way ("….writing"). A process that is killed meanwhile may leave a
/// temporary file of QSettings, whose random name does not tell who made it; the mark tells when it was made.
class VTWriteMark
{
public:
    explicit VTWriteMark(const QString& strPath);
    ~VTWriteMark();
    VTWriteMark(const VTWriteMark&) = delete;
    VTWriteMark& operator=(const VTWriteMark&) = delete;

private:
    QString m_strMark;
};

/// Removes the mark and the temporary files of a write that was killed. Does nothing while a process holds the lock
/// of the file.
void VTRemoveStrayFiles(const QString& strPath);

/// Removes a lock file that a process left empty because it was killed while it took the lock. QSettings would wait half a
/// minute for it. A lock that a process holds is not removed.
void VTRemoveEmptyLock(const QString& strPath);
