#include "dialogs/vtr_search.h"

#include "common/vtr_ids.h"
#include "common/vtr_protocol.h"
#include "common/vtr_showform.h"
#include "dialogs/vtr_conditions.h"
#include "dialogs/vtr_jobtypes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyledItemDelegate>

namespace {

constexpr int DaysBack = 7;

QString ConfigurationFile()
{
    return QString(QCoreApplication::applicationDirPath() + QLatin1String("/Conf/") + VTIds::Client
        + QLatin1String(".ini"));
}

/// Data of the chosen item; invalid while the blank item is chosen.
QVariant ChosenData(const QComboBox* pCombo)
{
    return pCombo->currentText().trimmed().isEmpty() ? QVariant() : pCombo->currentData();
}

QString TrimmedData(const QComboBox* pCombo)
{
    return pCombo->currentData().toString().trimmed();
}

std::optional<VTTimeRange> Range(
    const QCheckBox* pSwitch, const QDateTimeEdit* pLower, const QDateTimeEdit* pUpper)
{
    if (!pSwitch->isChecked())
        return std::nullopt;
    return VTTimeRange {pLower->text(), pUpper->text()};
}

} // namespace

VTSearch::VTSearch(QWidget* pForm)
    : m_form(pForm, VTIds::Search)
    , m_mapStatus {
          {0, tr("Waiting")},
          {1, tr("Running")},
          {2, tr("Stopped")},
          {4, tr("Finished")},
          {5, tr("Deleted")},
          {6, tr("To full render")},
          {7, tr("Failed")},
          {8, tr("Arrears")},
          {9, tr("Pause due to arrears")},
      }
{
    m_form.SetDialogFlags();
}

void VTSearch::InitWidgets()
{
    FindWidgets();
    // The style sheet reaches the drop-down items only through this delegate.
    m_pItemDelegate = new QStyledItemDelegate(this);
    for (QComboBox* pCombo : {m_pCmbJobType, m_pCmbJobStatus, m_pCmbProjectName, m_pCmbBusinessType})
        pCombo->setItemDelegate(m_pItemDelegate);

    connect(m_pBtnReset, &QPushButton::clicked, this, &VTSearch::ClickReset);
    connect(m_pBtnSearchJob, &QPushButton::clicked, this, &VTSearch::ClickSearch);
    connect(m_pBtnClose, &QPushButton::clicked, m_form.Form(), &QWidget::close);
    connect(m_pChkStartTime, &QCheckBox::stateChanged, this, &VTSearch::UpdateTimeEditStatus);
    connect(m_pChkEndTime, &QCheckBox::stateChanged, this, &VTSearch::UpdateTimeEditStatus);
}

void VTSearch::FindWidgets()
{
    m_pLblJobId = m_form.Find<QLabel>(QStringLiteral("lblJobID"));
    m_pLblJobName = m_form.Find<QLabel>(QStringLiteral("lblJobName"));
    m_pLblJobType = m_form.Find<QLabel>(QStringLiteral("lblJobType"));
    m_pLblJobStatus = m_form.Find<QLabel>(QStringLiteral("lblJobStatus"));
    m_pLblProjectName = m_form.Find<QLabel>(QStringLiteral("lblProjectName"));
    m_pLblBusinessType = m_form.Find<QLabel>(QStringLiteral("lblBusinessType"));
    m_pChkStartTime = m_form.Find<QCheckBox>(QStringLiteral("checkBox_startTimeRange"));
    m_pChkEndTime = m_form.Find<QCheckBox>(QStringLiteral("checkBox_endTimeRange"));
    m_pLneJobId = m_form.Find<QLineEdit>(QStringLiteral("lneJobId"));
    m_pLneJobName = m_form.Find<QLineEdit>(QStringLiteral("lneJobName"));
    m_pCmbJobType = m_form.Find<QComboBox>(QStringLiteral("cmbJobType"));
    m_pCmbJobStatus = m_form.Find<QComboBox>(QStringLiteral("cmbJobStatus"));
    m_pCmbProjectName = m_form.Find<QComboBox>(QStringLiteral("cmbProjectName"));
    m_pCmbBusinessType = m_form.Find<QComboBox>(QStringLiteral("cmbBusinessType"));
    m_pDteStartLower = m_form.Find<QDateTimeEdit>(QStringLiteral("dteStartTimeLower"));
    m_pDteStartUpper = m_form.Find<QDateTimeEdit>(QStringLiteral("dteStartTimeUpper"));
    m_pDteEndLower = m_form.Find<QDateTimeEdit>(QStringLiteral("dteEndTimeLower"));
    m_pDteEndUpper = m_form.Find<QDateTimeEdit>(QStringLiteral("dteEndTimeUpper"));
    m_pBtnClose = m_form.Find<QPushButton>(QStringLiteral("btnCloseSearch"));
    m_pBtnSearchJob = m_form.Find<QPushButton>(QStringLiteral("btnSearchJob"));
    m_pBtnReset = m_form.Find<QPushButton>(QStringLiteral("btnReset"));
}

void VTSearch::ClickSearch()
{
    if (!IsBound())
        return;
    VTSearchFields fields;
    fields.strSequence = m_pLneJobId->text().trimmed();
    fields.strName = m_pLneJobName->text().trimmed();
    fields.strType = ChosenData(m_pCmbJobType).toStringList().join(QLatin1Char('@'));
    fields.strStatus = ChosenData(m_pCmbJobStatus).toString();
    fields.strPool = TrimmedData(m_pCmbProjectName);
    fields.strBusinessType = TrimmedData(m_pCmbBusinessType);
    fields.startTime = Range(m_pChkStartTime, m_pDteStartLower, m_pDteStartUpper);
    fields.endTime = Range(m_pChkEndTime, m_pDteEndLower, m_pDteEndUpper);

    QVariantMap mapCondition = VTSearchConditions(fields);
    emit search(mapCondition);
    m_form.Close();
}

void VTSearch::ClickReset()
{
    if (!IsBound())
        return;
    m_pLneJobId->clear();
    m_pLneJobName->clear();
    for (QComboBox* pCombo : {m_pCmbJobType, m_pCmbJobStatus, m_pCmbProjectName, m_pCmbBusinessType})
        pCombo->setCurrentIndex(0);
}

void VTSearch::Update()
{
    if (!IsBound())
        return;
    m_pLneJobId->clear();
    m_pLneJobName->clear();
    FillJobTypes();
    FillJobStatus();
    FillProjects();
    FillBusinessTypes();
    ResetTimes();
    UpdateTimeEditStatus();
}

void VTSearch::FillJobTypes()
{
    m_pCmbJobType->clear();
    m_pCmbJobType->addItem(QString(), QString());
    const QList<VTJobType> lstType = VTReadJobTypes(ConfigurationFile());
    for (const VTJobType& lstPart : lstType)
        m_pCmbJobType->addItem(lstPart.last(), lstPart);
    m_pCmbJobType->setCurrentIndex(0);
}

void VTSearch::FillJobStatus()
{
    m_pCmbJobStatus->clear();
    m_pCmbJobStatus->addItem(QString(), -1);
    for (auto itStatus = m_mapStatus.cbegin(); itStatus != m_mapStatus.cend(); ++itStatus)
        m_pCmbJobStatus->addItem(itStatus.value(), itStatus.key());
}

void VTSearch::FillProjects()
{
    m_pCmbProjectName->clear();
    m_pCmbProjectName->addItem(QString(), QString());
    for (const QVariant& varProject : qAsConst(m_lstProject)) {
        const QVariantMap mapProject = varProject.toMap();
        m_pCmbProjectName->addItem(mapProject.value(QStringLiteral("project_name")).toString(),
            mapProject.value(QStringLiteral("project_pool")).toString());
    }
}

void VTSearch::FillBusinessTypes()
{
    m_pCmbBusinessType->clear();
    m_pCmbBusinessType->addItem(QString(), QString());
    m_pCmbBusinessType->addItem(tr("Normal work"), QStringLiteral("0"));
    m_pCmbBusinessType->addItem(tr("Rendering work"), QStringLiteral("1"));
}

void VTSearch::ResetTimes()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime weekAgo = now.date().addDays(-DaysBack).startOfDay();
    m_pDteStartLower->setDateTime(weekAgo);
    m_pDteEndLower->setDateTime(weekAgo);
    m_pDteStartUpper->setDateTime(now);
    m_pDteEndUpper->setDateTime(now);
}

void VTSearch::Show()
{
    if (m_form.Form())
        VTShowForm(m_form.Form());
}

void VTSearch::UpdateTimeEditStatus()
{
    if (!IsBound())
        return;
    m_pDteStartLower->setEnabled(m_pChkStartTime->isChecked());
    m_pDteStartUpper->setEnabled(m_pChkStartTime->isChecked());
    m_pDteEndLower->setEnabled(m_pChkEndTime->isChecked());
    m_pDteEndUpper->setEnabled(m_pChkEndTime->isChecked());
}

void VTSearch::ChangeSkin(QString strSkin)
{
    m_form.ApplySkin(strSkin);
}

void VTSearch::ChangeLanguage()
{
    if (!IsBound())
        return;
    m_pLblJobId->setText(tr("Job Id"));
    m_pLblJobName->setText(tr("Job Name"));
    m_pLblJobType->setText(tr("Job Type"));
    m_pLblJobStatus->setText(tr("Job Status"));
    m_pLblProjectName->setText(tr("Project Name"));
    m_pLblBusinessType->setText(tr("Business Type"));
    m_pChkStartTime->setText(tr("Start Time"));
    m_pChkEndTime->setText(tr("End Time"));
    m_pBtnSearchJob->setText(tr("Search"));
    m_pBtnReset->setText(tr("Reset"));
    m_pCmbBusinessType->setItemText(1, tr("Normal work"));
    m_pCmbBusinessType->setItemText(2, tr("Rendering work"));
}

void VTSearch::Close()
{
    m_form.Close();
}

void VTSearch::TriggerProjectListResponse(int nRet, QVariantMap mapData)
{
    if (nRet == VTProtocol::Success)
        m_lstProject = mapData.value(VTProtocol::Data).toList();
}
