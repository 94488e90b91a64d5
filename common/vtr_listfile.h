#pragma once

#include "common/vtr_damagedcopies.h"

#include <QSettings>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <memory>

struct VTNamedList
{
    QString strName;
    QStringList lstValue;
};

/// Named string lists in one group of an INI file, in the form that QSettings reads and writes.
///
/// Other programs may write the file at any time, so every call rereads it. Each write replaces the whole file, so a
/// process that is killed leaves either the old file or the new one. It may leave a temporary file too, which the next
/// opening removes. If QSettings can read only part of the file, a copy is kept beside it ("….damaged", "….damaged.2" and
/// so on), since the next write drops the rest. Without a path all reads are empty and all writes fail.
class VTListFile
{
public:
    enum class Names {
        AnyText, ///< names that QSettings would change are escaped
        Plain    ///< names are keys as they are, so that any program that uses QSettings reads them
    };

    VTListFile() = default;

    /// Creates the file and its folder, unless the file exists.
    VTListFile(const QString& strPath, const QString& strGroup, Names names = Names::AnyText);

    bool IsOpen() const { return m_pSettings != nullptr; }
    QString Path() const { return m_strPath; }

    /// All entries in the file's order. No name is empty.
    QVector<VTNamedList> Entries() const;
    bool Contains(const QString& strName) const { return !KeysOf(strName).isEmpty(); }
    /// Empty when there is no entry of that name.
    QStringList Value(const QString& strName) const;

    /// Writes an entry.
    /// @return whether it is on the disk. If not, this object keeps the entry, and each later call tries to write it
    /// again.
    bool Set(const QString& strName, const QVariant& varValue) const;
    bool Remove(const QString& strName) const;

private:
    QStringList Keys() const;
    QStringList KeysOf(const QString& strName) const;
    QString KeyOf(const QString& strName) const;
    QString NameOf(const QString& strKey) const;
    QString FullKey(const QString& strKey) const;
    bool Sync() const;
    bool Save() const;

    QString m_strPath;
    QString m_strGroup;
    Names m_names = Names::AnyText;
    std::unique_ptr<QSettings> m_pSettings;
    mutable VTDamagedCopies m_copies;
    mutable qint64 m_nUnsaved = 0; // an upper bound of the bytes that are not on the disk yet
};
