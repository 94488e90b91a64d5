#include "dialogs/vtr_setparent.h"

#include "common/vtr_filename.h"
#include "common/vtr_ids.h"
#include "common/vtr_jobrow.h"
#include "common/vtr_prompts.h"
#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "common/vtr_tablecells.h"
#include "common/vtr_tablerows.h"
#include "dialogs/vtr_barsinview.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

namespace {

constexpr int PollInterval = 1000; // ms

/// Rows are added in batches, because a table lays out all its progress bars again at each addition. Events have to
/// wait for one batch only, which takes less than a frame at 60 Hz.
constexpr int BatchSize = 24;

constexpr int FirstPage = 1;
constexpr int ListForParents = 1;

constexpr char SonsProperty[] = "sonlist";

/// Status of the job in a job-info answer.
int ReportedStatus(const QVariantMap& mapAnswer)
{
    const QVariantMap mapJob = VTProtocol::Payload(mapAnswer).value(QStringLiteral("jobDatas")).toMap();
    return mapJob.value(QStringLiteral("jobStatus")).toInt();
}

} // namespace

VTSetParent::VTSetParent(QWidget* pForm, QTableWidget* pJobTable, QMap<int, QString> progressStyles,
    QMap<int, QString> statusTexts)
    : m_form(pForm, VTIds::SetParent)
    , m_pJobTable(pJobTable)
    , m_pPollTimer(new QTimer(this))
{
    m_codeTables.mapProgressStyle = progressStyles;
    m_codeTables.mapJobStatus = statusTexts;
    m_pPollTimer->setInterval(PollInterval);
    connect(m_pPollTimer, &QTimer::timeout, this, &VTSetParent::GetJobInfo);
}

void VTSetParent::Retire()
{
    m_pServices = nullptr;
    EndSession();
}

void VTSetParent::EndSession()
{
    ++m_nFill;
    ++m_nSession;
    m_pPollTimer->stop();
    // Late answers must not remove anything from the file, since the jobs would then never be recovered.
    m_jobDependencies.Close();
    if (!IsBound())
        return;
    m_form.Form()->setProperty(SonsProperty, QVariant());
    VTTableRows::Clear(m_pCandidates);
    m_form.Close();
}

void VTSetParent::InitWidgets()
{
    m_form.SetDialogFlags();
    m_pCandidates = m_form.Find<QTableWidget>(QStringLiteral("twtJobList"));
    m_pCandidates->setColumnCount(VTColumnCount);
    m_pBars = new VTBarsInView(m_pCandidates, VTJobColumn::Progress, m_codeTables, this);
    m_pCandidates->setSortingEnabled(false);
    m_pCandidates->setContextMenuPolicy(Qt::CustomContextMenu);
    m_pCandidates->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pBtnClose = m_form.Find<QPushButton>(QStringLiteral("btnCloseSetParent"));
    m_pBtnOk = m_form.Find<QPushButton>(QStringLiteral("btnOkSetParent"));
    connect(m_pBtnClose, &QPushButton::clicked, m_form.Form(), &QWidget::close);
    connect(m_pBtnOk, &QPushButton::clicked, this, &VTSetParent::TriggerSetParentOk);
}

void VTSetParent::ChangeSkin(QString strSkin)
{
    m_form.ApplySkin(strSkin);
}

void VTSetParent::ChangeLanguage()
{
    if (!IsBound())
        return;
    m_pBtnOk->setText(tr("Ok"));
    m_pCandidates->setHorizontalHeaderLabels(VTJobHeaders());
    VTTableCells::RetranslateJobStatuses(m_pCandidates, m_codeTables);
}

void VTSetParent::SetJobParent()
{
    if (!m_form.Form())
        return;
    const QStringList lstSon = WaitingSons();
    if (lstSon.isEmpty())
        return;
    m_form.Form()->setProperty(SonsProperty, lstSon);
    // If the list cannot be fetched, the dialog shows no candidates rather than those of its last use.
    ++m_nFill;
    if (m_pCandidates)
        VTTableRows::Clear(m_pCandidates);
    const QPointer<VTSetParent> pSelf(this);
    const int nSession = m_nSession;
    const int nOpening = ++m_nOpening;
    emit getJobList(FirstPage, QString(), ListForParents);
    // An answer that came at once has processed events, so the session may have ended, or the dialog may have been opened
    // again, meanwhile.
    if (pSelf && nSession == m_nSession && nOpening == m_nOpening)
        m_form.Exec();
}

/// Ids of the checked jobs; none when one of them is neither waiting nor running.
QStringList VTSetParent::WaitingSons() const
{
    QStringList lstSon;
    if (!m_pJobTable)
        return lstSon;
    const QList<int> lstRow = VTTableRows::Checked(m_pJobTable);
    for (const int nRow : lstRow) {
        const int nStatus = VTTableCells::Data(m_pJobTable, nRow, VTJobColumn::Status).toInt();
        if (nStatus != VTCodeTables::JobWaiting && nStatus != VTCodeTables::JobRunning)
            return {};
        lstSon.append(VTTableRows::Id(m_pJobTable, nRow));
    }
    return lstSon;
}

void VTSetParent::TriggerSetParentOk()
{
    const QStringList lstParent = GetCheckedItem();
    const QStringList lstSon
        = m_form.Form() ? m_form.Form()->property(SonsProperty).toStringList() : QStringList();
    if (lstParent.isEmpty() || lstSon.isEmpty()) {
        m_form.Close();
        return;
    }
    const QString strParents = lstParent.join(QLatin1Char('&'));
    // A job cannot wait for itself. contract: an id that is contained in a parent's id or type counts as well.
    for (const QString& strSon : lstSon) {
        if (strParents.contains(strSon))
            return;
    }
    // The file is written first: jobs that were stopped but not recorded would wait forever.
    const bool bSaved = m_jobDependencies.Record(lstSon, lstParent);
    m_pPollTimer->start();
    const QPointer<VTSetParent> pSelf(this);
    emit stopJobs(JobsRequest(lstSon));
    if (pSelf && !bSaved)
        ReportUnsaved(true);
    if (pSelf)
        m_form.Close();
}

void VTSetParent::ShowParenList(QVariantList lstJobs)
{
    if (!IsBound())
        return;
    const int nFill = ++m_nFill;
    const bool bShown = m_form.Form()->isVisible();
    const QPointer<VTSetParent> pSelf(this);
    VTTableRows::Clear(m_pCandidates);
    QVector<VTJobRecord> lstBatch;
    for (int i = 0; i < lstJobs.size(); ++i) {
        lstBatch.append(VTJobRecord::FromMap(lstJobs.at(i).toMap()));
        if (lstBatch.size() == BatchSize || i + 1 == lstJobs.size()) {
            AppendCandidates(lstBatch);
            lstBatch.clear();
        }
        QCoreApplication::processEvents();
        // Events may have ended the session, the dialog or this object, or brought a newer list.
        if (!pSelf || nFill != m_nFill || !m_form.Form() || (bShown && !m_form.Form()->isVisible()))
            return;
    }
}

void VTSetParent::AppendCandidates(const QVector<VTJobRecord>& lstJob)
{
    int nRow = m_pCandidates->rowCount();
    m_pCandidates->setRowCount(nRow + lstJob.size());
    for (const VTJobRecord& job : lstJob)
        WriteCandidate(nRow++, job);
    m_pBars->ShowBarsInView();
}

void VTSetParent::WriteCandidate(int nRow, const VTJobRecord& job)
{
    VTJobRow row = VTMakeJobRow(job, m_codeTables.mapJobStatus);
    row[VTJobColumn::StartTime].varData.clear();
    for (const int nColumn : {VTJobColumn::StartTime, VTJobColumn::Status, VTJobColumn::Cost})
        row[nColumn].strTip.clear();

    for (int nColumn = 0; nColumn < VTColumnCount; ++nColumn) {
        if (nColumn == VTJobColumn::Progress)
            m_pBars->SetProgress(nRow, job.nProgress);
        else
            VTTableCells::Write(m_pCandidates, nRow, nColumn, row[nColumn]);
    }
    for (const int nColumn : {VTJobColumn::Sequence, VTJobColumn::Name})
        m_pCandidates->item(nRow, nColumn)->setData(Qt::TextAlignmentRole, QVariant());
}

QStringList VTSetParent::GetCheckedItem()
{
    QStringList lstEntry;
    if (!IsBound())
        return lstEntry;
    const QList<int> lstRow = VTTableRows::Checked(m_pCandidates);
    for (const int nRow : lstRow) {
        const VTParentJob parent {VTTableRows::Id(m_pCandidates, nRow),
            VTTableCells::Data(m_pCandidates, nRow, VTJobColumn::Name).toString()};
        lstEntry.append(parent.Entry());
    }
    return lstEntry;
}

void VTSetParent::GetJobInfo()
{
    if (!m_jobDependencies.HasQueued()) {
        if (!m_jobDependencies.Requeue())
            m_pPollTimer->stop();
        return;
    }
    const QPointer<VTSetParent> pSelf(this);
    const int nSession = m_nSession;
    const QVector<VTParentJob> lstParent = m_jobDependencies.TakeNext();
    for (const VTParentJob& parent : lstParent) {
        emit getJobInfo(InfoRequest(parent));
        if (!pSelf || nSession != m_nSession)
            return;
    }
}

void VTSetParent::GetSettings(QString strServer, QString strToken, QString strUsername, QString strUserId)
{
    EndSession();
    m_strToken = strToken;
    m_strUserId = strUserId;
    m_jobDependencies.Open(VTAccountFile(QStringLiteral("data"), strServer, strUsername));
    if (!QFileInfo(m_jobDependencies.Path()).isWritable())
        ReportUnsaved(false);
    m_pPollTimer->start();
}

void VTSetParent::TriggerJobInfoResponse(int nRet, QVariantMap mapData)
{
    // Only this dialog marks its requests with the identifier; answers to other requests are ignored.
    const QString strJobId = mapData.value(QStringLiteral("jobId")).toString();
    if (nRet != VTProtocol::Success || !mapData.value(VTProtocol::Identifier).toBool() || strJobId.isEmpty()
        || ReportedStatus(mapData) != VTCodeTables::JobFinished)
        return;
    const QPointer<VTSetParent> pSelf(this);
    const int nSession = m_nSession;
    const QStringList lstKey = m_jobDependencies.Finish(strJobId);
    for (const QString& strKey : lstKey) {
        // Another answer may have come from inside the last request.
        if (!m_jobDependencies.IsReady(strKey))
            continue;
        if (!m_jobDependencies.Release(strKey))
            ReportUnsaved(false);
        emit recoverJobs(JobsRequest(VTJobDependencies::Sons(strKey)));
        if (!pSelf || nSession != m_nSession)
            return;
    }
}

VTParameters VTSetParent::JobsRequest(const QStringList& lstJobId) const
{
    VTParameters parameters = VTProtocol::SessionRequest(m_strUserId, m_strToken);
    VTProtocol::AddJobIds(parameters, lstJobId);
    return parameters;
}

VTParameters VTSetParent::InfoRequest(const VTParentJob& parent) const
{
    VTParameters parameters = VTProtocol::SessionRequest(m_strUserId, m_strToken);
    parameters.insert(QStringLiteral("id"), parent.strId);
    parameters.insert(QStringLiteral("jobId"), parent.strId);
    parameters.insert(QStringLiteral("jobtype"), parent.strType);
    parameters.insert(VTProtocol::Identifier, 1);
    return parameters;
}

void VTSetParent::ReportUnsaved(bool bNotify) const
{
    if (!m_pServices)
        return;
    m_pServices->LogCritical(
        QStringLiteral("The dependency file cannot be written: %1").arg(m_jobDependencies.Path()));
    if (bNotify)
        VTPrompts(*m_pServices)
            .Notify(tr("The dependency could not be saved. The jobs will be resumed only while the client is "
                       "running."));
}
