#include "mainwindow/vtr_contextmenus.h"

#include "common/vtr_columns.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_tables.h"

#include <QCursor>
#include <QFileInfo>
#include <QPointer>

VTContextMenus::VTContextMenus(
    QWidget* pWindow, const VTMainForm& form, const VTAccountSettings& settings, VTTables& tables)
    : m_form(form)
    , m_settings(settings)
    , m_tables(tables)
    , m_jobMenu(pWindow)
    , m_submitMenu(pWindow)
    , m_downloadMenu(pWindow)
    , pDownload(m_jobMenu.addAction(QString()))
    , pSetParent(m_jobMenu.addAction(QString()))
    , pSubmit(m_submitMenu.addAction(QString()))
    , pDeleteTasks(m_submitMenu.addAction(QString()))
    , pSetArgument(new QAction(&m_submitMenu))
    , pOpenFolder(m_downloadMenu.addAction(QString()))
    , pRedownload(m_downloadMenu.addAction(QString()))
{
}

void VTContextMenus::Retranslate() const
{
    pDownload->setText(tr("Download"));
    pSetParent->setText(tr("Set parent"));
    pSubmit->setText(tr("Continue submit"));
    pDeleteTasks->setText(tr("Delete Tasks"));
    pSetArgument->setText(tr("Set argument"));
    pOpenFolder->setText(tr("Open file path"));
    pRedownload->setText(tr("Redownload"));
}

void VTContextMenus::RunJobMenu()
{
    if (m_tables.PressedRow() >= 0)
        Run(m_jobMenu);
}

void VTContextMenus::RunDownloadMenu()
{
    if (m_tables.PressedRow() >= 0)
        Run(m_downloadMenu);
}

void VTContextMenus::RunSubmitMenu()
{
    const int nRow = m_tables.PressedRow();
    const QTableWidget* pTable = m_form.twtLocalTask;
    if (nRow < 0 || pTable->rowCount() < nRow || m_tables.CheckedIds(VTList::LocalTasks).isEmpty())
        return;
    if (!pTable->item(nRow, VTTaskColumn::SceneFile))
        return;
    if (m_settings.OffersArguments() && HasArguments(nRow))
        m_submitMenu.addAction(pSetArgument); // adding it again does not duplicate it
    else
        m_submitMenu.removeAction(pSetArgument);
    Run(m_submitMenu);
}

bool VTContextMenus::HasArguments(int nRow) const
{
    const QTableWidgetItem* pStartTime = m_form.twtLocalTask->item(nRow, VTTaskColumn::StartTime);
    const QTableWidgetItem* pSceneFile = m_form.twtLocalTask->item(nRow, VTTaskColumn::SceneFile);
    const QString strSuffix = QFileInfo(pSceneFile->text()).suffix();
    return pStartTime && pStartTime->data(Qt::UserRole).toBool()
        && (strSuffix == QLatin1String("ma") || strSuffix == QLatin1String("mb"));
}

void VTContextMenus::Run(QMenu& menu)
{
    const QPointer<VTContextMenus> pThis(this);
    menu.exec(QCursor::pos());
    if (pThis)
        m_tables.ForgetPress();
}
