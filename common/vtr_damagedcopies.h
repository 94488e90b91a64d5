#pragma once

#include <QDateTime>
#include <QString>

/// Copies an INI file each time it is found damaged, so that a later write does not destroy what could be repaired.
class VTDamagedCopies
{
public:
    /// Copies the file to "….damaged" (or "….damaged.2" and so on) if QSettings can read only part of it. Does nothing
    /// when the file is unchanged since the last call, or equal to the last copy.
    void Keep(const QString& strPath);

private:
    QDateTime m_modified;
    qint64 m_nSize = -1;
};
