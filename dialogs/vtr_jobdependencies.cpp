#include "dialogs/vtr_jobdependencies.h"

#include <algorithm>
#include <utility>

namespace {

constexpr QLatin1Char Separator('&');

} // namespace

QString VTParentJob::Entry() const
{
    return QString(strId + Separator + strType);
}

VTParentJob VTParentJob::FromEntry(const QString& strEntry)
{
    const QStringList lstPart = strEntry.split(Separator);
    return {lstPart.value(0), lstPart.value(1)};
}

void VTJobDependencies::Open(const QString& strPath)
{
    m_file = VTListFile(strPath, QStringLiteral("parent"), VTListFile::Names::Plain);
    m_leftFile = VTListFile();
    Requeue();
}

void VTJobDependencies::Close()
{
    // The file object holds entries that could not be written. It is kept, so that the account's next session finds
    // them.
    m_leftFile = std::exchange(m_file, {});
    m_lstQueue.clear();
}

bool VTJobDependencies::Record(const QStringList& lstSon, const QStringList& lstParentEntry)
{
    const QString strKey = lstSon.join(Separator);
    const bool bSaved = m_file.Set(strKey, lstParentEntry);
    m_lstQueue.append(strKey);
    return bSaved;
}

bool VTJobDependencies::Requeue()
{
    m_lstQueue.clear();
    const QVector<VTNamedList> lstGroup = m_file.Entries();
    for (const VTNamedList& group : lstGroup)
        m_lstQueue.append(group.strName);
    return HasQueued();
}

QVector<VTParentJob> VTJobDependencies::TakeNext()
{
    QVector<VTParentJob> lstParent;
    const QStringList lstEntry = m_file.Value(m_lstQueue.takeFirst());
    for (const QString& strEntry : lstEntry)
        lstParent.append(VTParentJob::FromEntry(strEntry));
    return lstParent;
}

QStringList VTJobDependencies::Finish(const QString& strJobId)
{
    m_setFinished.insert(strJobId);
    QStringList lstKey;
    const QVector<VTNamedList> lstGroup = m_file.Entries();
    for (const VTNamedList& group : lstGroup) {
        if (group.lstValue.join(Separator).contains(strJobId) && AllFinished(group.lstValue))
            lstKey.append(group.strName);
    }
    return lstKey;
}

bool VTJobDependencies::IsReady(const QString& strKey) const
{
    const QStringList lstEntry = m_file.Value(strKey);
    return !lstEntry.isEmpty() && AllFinished(lstEntry);
}

bool VTJobDependencies::AllFinished(const QStringList& lstParentEntry) const
{
    return std::all_of(lstParentEntry.begin(), lstParentEntry.end(), [this](const QString& strEntry) {
        return m_setFinished.contains(VTParentJob::FromEntry(strEntry).strId);
    });
}
