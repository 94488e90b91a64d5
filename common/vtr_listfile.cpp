#include "common/vtr_listfile.h"

#include "common/vtr_durability.h"
#include "common/vtr_filename.h"
#include "common/vtr_writemark.h"

#include <QFileInfo>
#include <QSet>
#include <QStorageInfo>
#include <QVariantMap>

namespace {

constexpr QLatin1Char Slash('/');
constexpr qint64 LeastFree = 16384; // bytes of free space to keep on the disk
constexpr qint64 LongestEscape = 8; // the most characters that the file takes for one character of a value
const QLatin1String PercentCode("%25");
const QLatin1String SlashCode("%2F");
const QLatin1String BackslashCode("%5C");

// QSettings drops leading, trailing and doubled slashes, and turns backslashes into slashes on some systems. A name
// that already contains an escape code is escaped too, so that it is read back unchanged.
bool StaysWhole(const QString& strName)
{
    return !strName.startsWith(Slash) && !strName.endsWith(Slash) && !strName.contains(QLatin1String("//"))
        && !strName.contains(QLatin1Char('\\')) && !strName.contains(PercentCode)
        && !strName.contains(SlashCode) && !strName.contains(BackslashCode);
}

QString EscapedKey(const QString& strName)
{
    if (StaysWhole(strName))
        return strName;
    QString strKey = strName;
    return strKey.replace(QLatin1Char('%'), PercentCode)
        .replace(Slash, SlashCode)
        .replace(QLatin1Char('\\'), BackslashCode);
}

QString UnescapedName(const QString& strKey)
{
    QString strName = strKey;
    strName.replace(SlashCode, QLatin1String("/"))
        .replace(BackslashCode, QLatin1String("\\"))
        .replace(PercentCode, QLatin1String("%"));
    // A key that this class would not write comes from another program and is a plain name.
    return EscapedKey(strName) == strKey ? strName : strKey;
}

} // namespace

VTListFile::VTListFile(const QString& strPath, const QString& strGroup, Names names)
    : m_strPath(strPath)
    , m_strGroup(strGroup)
    , m_names(names)
{
    VTEnsureFile(strPath);
    VTRemoveStrayFiles(strPath);
    m_pSettings = std::make_unique<QSettings>(strPath, QSettings::IniFormat);
}

QVector<VTNamedList> VTListFile::Entries() const
{
    QVector<VTNamedList> lstEntry;
    QSet<QString> setName;
    const QStringList lstKey = Keys();
    for (const QString& strKey : lstKey) {
        const QString strName = NameOf(strKey);
        if (setName.contains(strName))
            continue;
        setName.insert(strName);
        lstEntry.append({strName, m_pSettings->value(FullKey(strKey)).toStringList()});
    }
    return lstEntry;
}

QStringList VTListFile::Value(const QString& strName) const
{
    const QStringList lstKey = KeysOf(strName);
    return lstKey.isEmpty() ? QStringList() : m_pSettings->value(FullKey(lstKey.first())).toStringList();
}

bool VTListFile::Set(const QString& strName, const QVariant& varValue) const
{
    if (!IsOpen() || strName.isEmpty())
        return false;
    const QStringList lstKey = KeysOf(strName);
    m_pSettings->setValue(FullKey(lstKey.isEmpty() ? KeyOf(strName) : lstKey.first()), varValue);
    m_nUnsaved += LongestEscape * varValue.toStringList().join(Slash).size();
    return Save();
}

bool VTListFile::Remove(const QString& strName) const
{
    if (!IsOpen())
        return false;
    const QStringList lstKey = KeysOf(strName);
    for (const QString& strKey : lstKey) {
        // QSettings removes "a/b" along with "a", but here they are two names.
        QVariantMap mapKept;
        const QStringList lstAll = Keys();
        for (const QString& strOther : lstAll) {
            if (strOther.startsWith(strKey + Slash))
                mapKept.insert(FullKey(strOther), m_pSettings->value(FullKey(strOther)));
        }
        m_pSettings->remove(FullKey(strKey));
        for (auto itKept = mapKept.cbegin(); itKept != mapKept.cend(); ++itKept)
            m_pSettings->setValue(itKept.key(), itKept.value());
    }
    return Save();
}

/// The keys of the group in the file as it is now.
QStringList VTListFile::Keys() const
{
    QStringList lstKey;
    if (!IsOpen())
        return lstKey;
    Sync();
    const QString strPrefix = FullKey(QString());
    const QStringList lstAll = m_pSettings->allKeys();
    if (m_pSettings->status() == QSettings::FormatError)
        m_copies.Keep(m_strPath);
    for (const QString& strKey : lstAll) {
        if (strKey.size() > strPrefix.size() && strKey.startsWith(strPrefix))
            lstKey.append(strKey.mid(strPrefix.size()));
    }
    return lstKey;
}

/// The keys of a name: first the plain name, which other programs use, then its escaped forms.
QStringList VTListFile::KeysOf(const QString& strName) const
{
    QStringList lstFound;
    const QStringList lstKey = Keys();
    for (const QString& strKey : lstKey) {
        if (strKey == strName)
            lstFound.prepend(strKey);
        else if (NameOf(strKey) == strName)
            lstFound.append(strKey);
    }
    return lstFound;
}

QString VTListFile::KeyOf(const QString& strName) const
{
    return m_names == Names::AnyText ? EscapedKey(strName) : strName;
}

QString VTListFile::NameOf(const QString& strKey) const
{
    return m_names == Names::AnyText ? UnescapedName(strKey) : strKey;
}

QString VTListFile::FullKey(const QString& strKey) const
{
    return QString(m_strGroup + Slash + strKey);
}

/// @return false when there is something to write and no room for it.
bool VTListFile::Sync() const
{
    const QFileInfo info(m_strPath);
    const qint64 nFree = QStorageInfo(info.absolutePath()).bytesAvailable();
    // QSettings does not notice that a long value was cut short, and would put the rest in place of the whole file.
    if (m_nUnsaved > 0 && nFree >= 0 && nFree < LeastFree + info.size() + m_nUnsaved)
        return false;
    VTEnsureFile(m_strPath); // QSettings itself would create one that everybody may read
    VTRemoveEmptyLock(m_strPath);
    m_pSettings->sync();
    return true;
}

bool VTListFile::Save() const
{
    ++m_nUnsaved;
    const VTWriteMark mark(m_strPath);
    if (!Sync())
        return false;
    // A QSettings object never clears its first error, so a fresh one reports the current state.
    if (QSettings(m_strPath, QSettings::IniFormat).status() != QSettings::NoError || !VTSyncToDisk(m_strPath))
        return false;
    m_nUnsaved = 0;
    return true;
}
