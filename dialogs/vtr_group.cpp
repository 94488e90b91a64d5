#include "dialogs/vtr_group.h"

#include "common/vtr_codetables.h"
#include "common/vtr_filename.h"
#include "common/vtr_ids.h"
#include "common/vtr_plaintext.h"
#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "common/vtr_skin.h"
#include "dialogs/vtr_conditions.h"

#include <QAction>
#include <QCursor>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QToolBox>
#include <QVBoxLayout>

#include <algorithm>

namespace {

enum Page { StatusPage, GroupPage };

/// Page whose header offers the context menu.
constexpr int MenuPage = 2; // contract: the tool box has pages 0 and 1 only

constexpr int StatusPageHeight = 290; // pixels, like the two below
constexpr int SpaceBelowPanel = 60;
constexpr int SpaceInPanel = 10;

/// The names in the status list, which are also its translation keys.
constexpr const char* StatusNames[] = {QT_TRANSLATE_NOOP("VTGroup", "Running"),
    QT_TRANSLATE_NOOP("VTGroup", "Finished"), QT_TRANSLATE_NOOP("VTGroup", "All")};

QMap<QString, int> StatusCodes()
{
    return {
        {QStringLiteral("Finished"), VTCodeTables::JobFinished},
        {QStringLiteral("Running"), VTCodeTables::JobRunning},
    };
}

QListWidgetItem* NewGroupItem(const QString& strName, const QStringList& lstGuid)
{
    auto* pItem = new QListWidgetItem(strName);
    pItem->setData(Qt::UserRole, lstGuid);
    pItem->setToolTip(VTPlainToolTip(strName));
    return pItem;
}

} // namespace

VTGroup::VTGroup(QWidget* mainForm, QWidget* wgtGroup, QDialog* inputDialog)
    : m_pMainForm(mainForm)
    , m_pWgtGroup(wgtGroup)
    , m_pToolBox(new QToolBox(mainForm))
    , m_inputForm(inputDialog, VTIds::InputDialog)
    , m_pLblProject(VTFindWidget<QLabel>(mainForm, VTIds::Client, QStringLiteral("lblProject")))
    , m_pLblProjectV(VTFindWidget<QLabel>(mainForm, VTIds::Client, QStringLiteral("lblProjectV")))
    , m_pMenu(new QMenu(mainForm))
{
    m_pToolBox->setContextMenuPolicy(Qt::CustomContextMenu);
    auto* pLayout = new QVBoxLayout(wgtGroup);
    pLayout->addWidget(m_pToolBox, 0, Qt::AlignTop);
    BuildInputDialog();
}

void VTGroup::BuildInputDialog()
{
    m_inputForm.Dialog()->setModal(true);
    m_inputForm.SetDialogFlags();
    auto* pBtnClose = m_inputForm.Find<QPushButton>(QStringLiteral("btnClose"));
    m_pBtnOk = m_inputForm.Find<QPushButton>(QStringLiteral("btnOk"));
    m_pBtnCancel = m_inputForm.Find<QPushButton>(QStringLiteral("btnCancel"));
    m_pLblTip = m_inputForm.Find<QLabel>(QStringLiteral("lblTip"));
    m_pLneInput = m_inputForm.Find<QLineEdit>(QStringLiteral("lneInput"));
    m_pLblTitle = m_inputForm.Find<QLabel>(QStringLiteral("lblTitle"));
    connect(pBtnClose, &QPushButton::clicked, m_inputForm.Form(), &QWidget::close);
    connect(m_pBtnOk, &QPushButton::clicked, this, &VTGroup::ClickedOk);
    connect(m_pBtnCancel, &QPushButton::clicked, this, &VTGroup::ClickedCancel);
}

void VTGroup::InitWidgets()
{
    BuildStatusPage();
    BuildGroupPage();
    BuildMenu();
    connect(m_pToolBox, &QToolBox::currentChanged, this, &VTGroup::CurrentChanged);
    connect(m_pGroupList, &QWidget::customContextMenuRequested, this, &VTGroup::CustomContextMenu);
    connect(m_pToolBox, &QWidget::customContextMenuRequested, this, &VTGroup::CustomContextMenu);
}

void VTGroup::BuildStatusPage()
{
    m_pStatusList = new QListWidget(m_pToolBox);
    m_pStatusList->setFocusPolicy(Qt::NoFocus);
    for (const char* szName : StatusNames) {
        auto* pItem = new QListWidgetItem(QString::fromLatin1(szName), m_pStatusList);
        pItem->setData(Qt::UserRole, pItem->text());
    }
    m_pToolBox->insertItem(StatusPage, m_pStatusList, QIcon(m_strClosedIcon), QStringLiteral("My Render"));
    connect(m_pStatusList, &QListWidget::itemClicked, this, &VTGroup::StatusItemClicked);
}

void VTGroup::BuildGroupPage()
{
    m_pGroupList = new QListWidget(m_pToolBox);
    m_pGroupList->setFocusPolicy(Qt::NoFocus);
    m_pGroupList->setContextMenuPolicy(Qt::CustomContextMenu);
    m_pToolBox->insertItem(GroupPage, m_pGroupList, QIcon(m_strClosedIcon), QStringLiteral("Group"));
    connect(m_pGroupList, &QListWidget::itemClicked, this, &VTGroup::GroupItemClicked);
}

void VTGroup::BuildMenu()
{
    m_pActAdd = new QAction(this);
    m_pActDelete = new QAction(this);
    m_pMenu->addAction(m_pActAdd);
    m_pMenu->addAction(m_pActDelete);
    connect(m_pActAdd, &QAction::triggered, this, &VTGroup::AddGroup);
    connect(m_pActDelete, &QAction::triggered, this, &VTGroup::DeleteGroup);
}

QString VTGroup::CurrentProjectCondition()
{
    return VTGroupConditionText(m_groups.Value(CurrentProject()));
}

int VTGroup::CurrentPage() const
{
    return m_pToolBox ? m_pToolBox->currentIndex() : StatusPage;
}

void VTGroup::UpdateGroup()
{
    if (!IsBound() || !m_groups.IsOpen())
        return;
    const int nUpdate = ++m_nUpdate;
    const bool bSettings = m_pServices && m_pServices->pSettings;
    const QString strCurrent
        = bSettings ? m_pServices->pSettings->Value(CurrentProjectKey(), QVariant()).toString() : QString();
    // The settings service may call back: another user may have signed in, or the panel may have gone.
    if (nUpdate != m_nUpdate || !IsBound())
        return;
    m_pGroupList->clear();
    const QVector<VTNamedList> lstGroup = m_groups.Entries();
    for (const VTNamedList& group : lstGroup)
        m_pGroupList->addItem(NewGroupItem(group.strName, group.lstValue));

    const bool bThere = std::any_of(lstGroup.begin(), lstGroup.end(),
        [&strCurrent](const VTNamedList& group) { return group.strName == strCurrent; });
    SetCurrentProject(bThere ? strCurrent : lstGroup.value(0).strName);
}

void VTGroup::ChangeLanguage()
{
    if (!IsBound())
        return;
    m_pActAdd->setText(tr("Add"));
    m_pActDelete->setText(tr("Delete"));
    m_pLblProject->setText(tr("Project"));
    m_pToolBox->setItemText(StatusPage, tr("My Render"));
    m_pToolBox->setItemText(GroupPage, tr("Group"));
    for (int i = 0; i < m_pStatusList->count(); ++i) {
        QListWidgetItem* pItem = m_pStatusList->item(i);
        pItem->setText(tr(qUtf8Printable(pItem->data(Qt::UserRole).toString())));
    }
    if (!m_inputForm.Form())
        return;
    m_pLblTip->setText(tr("Group name:"));
    m_pBtnCancel->setText(tr("Cancel"));
    m_pBtnOk->setText(tr("Ok"));
    m_pLblTitle->setText(tr("Please input group name"));
}

void VTGroup::AddGroup()
{
    m_inputForm.Exec();
}

void VTGroup::Login(QString strServer, QString strUsername, QString strToken, QString strUserId)
{
    Q_UNUSED(strToken)
    Q_UNUSED(strUserId)
    m_strUserName = strUsername;
    m_groups = VTListFile(
        VTAccountFile(QStringLiteral("Data"), strServer, strUsername), QStringLiteral("jobgroup"));
    if (!IsBound())
        return;
    const QPointer<VTGroup> pSelf(this);
    UpdateGroup();
    if (!pSelf || !m_pToolBox)
        return;
    // Each page gets its icon and size when it is opened. The first page stays open.
    for (int i = m_pToolBox->count(); i >= 0; --i)
        m_pToolBox->setCurrentIndex(i);
}

void VTGroup::CustomContextMenu(QPoint pos)
{
    Q_UNUSED(pos)
    if (!IsBound())
        return;
    if (sender() == m_pGroupList || (sender() == m_pToolBox && CurrentPage() == MenuPage))
        m_pMenu->popup(QCursor::pos());
}

void VTGroup::DeleteGroup()
{
    if (!IsBound() || !m_pGroupList->currentItem())
        return;
    const bool bSaved = m_groups.Remove(m_pGroupList->currentItem()->text());
    UpdateGroup();
    if (!bSaved)
        ReportUnsaved();
}

void VTGroup::StatusItemClicked(QListWidgetItem* item)
{
    if (!item)
        return;
    const QMap<QString, int> mapCode = StatusCodes();
    const auto itCode = mapCode.constFind(item->data(Qt::UserRole).toString());
    emit condition(itCode == mapCode.constEnd() ? QString() : VTStatusConditionText(*itCode));
}

void VTGroup::GroupItemClicked(QListWidgetItem* item)
{
    if (!item || !IsBound())
        return;
    const QString strName = item->text();
    const QStringList lstGuid = m_groups.Value(strName);
    item->setData(Qt::UserRole, lstGuid);
    // The settings service may call back and refill the list, so the item is not touched any more.
    const int nUpdate = m_nUpdate;
    const QPointer<VTGroup> pSelf(this);
    SetCurrentProject(strName);
    if (pSelf && nUpdate == m_nUpdate)
        emit condition(VTGroupConditionText(lstGuid));
}

void VTGroup::CurrentChanged(int index)
{
    if (!m_pToolBox)
        return;
    m_pToolBox->setItemIcon(m_nPreviousPage, QIcon(m_strClosedIcon));
    m_pToolBox->setItemIcon(index, QIcon(m_strOpenIcon));
    m_nPreviousPage = index;
    WindowSizeChanged();
}

void VTGroup::ChangeSkin(QString strSkin)
{
    m_strClosedIcon = VTSkin::ClosedPageIconFile(strSkin);
    m_strOpenIcon = VTSkin::OpenPageIconFile(strSkin);
    if (m_pToolBox)
        VTSkin::ApplyStyleSheet(m_pMenu, strSkin, VTIds::Menu);
    if (m_inputForm.Form())
        VTSkin::ApplyStyleSheet(m_inputForm.Form(), strSkin, VTIds::InputDialog);
}

void VTGroup::ClickedOk()
{
    if (!m_inputForm.Form())
        return;
    const QPointer<VTGroup> pSelf(this);
    AddNamedGroup(m_pLneInput->text().trimmed());
    if (pSelf)
        m_inputForm.Close();
}

/// Adds a group on top of the list, unless one of that name exists. This object may be deleted meanwhile.
void VTGroup::AddNamedGroup(const QString& strName)
{
    if (!IsBound() || !m_groups.IsOpen() || strName.isEmpty() || m_groups.Contains(strName))
        return;
    const bool bSaved = m_groups.Set(strName, QString());
    m_pGroupList->insertItem(0, NewGroupItem(strName, {}));
    if (!bSaved)
        ReportUnsaved();
}

void VTGroup::ClickedCancel()
{
    m_inputForm.Close();
}

void VTGroup::WindowSizeChanged()
{
    if (!m_pToolBox || !m_pWgtGroup)
        return;
    m_pWgtGroup->setFixedHeight(qMax(0, m_pMainForm->height() - m_pWgtGroup->y() - SpaceBelowPanel));
    m_pToolBox->setFixedHeight(
        CurrentPage() == StatusPage ? StatusPageHeight : qMax(0, m_pWgtGroup->height() - SpaceInPanel));
}

/// Name of the current project, which the label shows.
QString VTGroup::CurrentProject() const
{
    return m_pToolBox ? m_pLblProjectV->text() : QString();
}

void VTGroup::SetCurrentProject(const QString& strName)
{
    VTSetPlainText(m_pLblProjectV, strName, true);
    if (m_pServices && m_pServices->pSettings)
        m_pServices->pSettings->SetValue(CurrentProjectKey(), strName);
}

QString VTGroup::CurrentProjectKey() const
{
    return QStringLiteral("vtr.account.%1/currentproject").arg(m_strUserName);
}

void VTGroup::ReportUnsaved() const
{
    if (!m_pServices)
        return;
    m_pServices->LogCritical(QStringLiteral("The group file cannot be written: %1").arg(m_groups.Path()));
    VTPrompts(*m_pServices)
        .Notify(
            tr("The groups could not be saved. Changes may be lost when you quit or another user signs in."));
}
