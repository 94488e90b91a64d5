#include "mainwindow/vtr_contextmenus.h"

#include "common/vtr_columns.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_tables.h"

#include <QCursor>
#include <QFileInfo>

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

void VTContextMenus::Run(int nTab)
{
    const int nRow = m_tables.PressedRow();
    if (nRow < 0)
        return;
    if (nTab == VTList::Jobs)
        Run(m_jobMenu, nTab);
    else if (nTab == VTList::Downloads)
        Run(m_downloadMenu, nTab);
    else if (CanRunSubmitMenu(nRow)) {
        OfferArguments(m_settings.OffersArguments() && HasArguments(nRow));
        Run(m_submitMenu, nTab);
    }
}

bool VTContextMenus::CanRunSubmitMenu(int nRow) const
{
    return m_form.twtLocalTask->item(nRow, VTTaskColumn::SceneFile)
        && !m_tables.CheckedIds(VTList::LocalTasks).isEmpty();
}

bool VTContextMenus::HasArguments(int nRow) const
{
    const QTableWidgetItem* pStartTime = m_form.twtLocalTask->item(nRow, VTTaskColumn::StartTime);
    const QTableWidgetItem* pSceneFile = m_form.twtLocalTask->item(nRow, VTTaskColumn::SceneFile);
    const QString strSuffix = QFileInfo(pSceneFile->text()).suffix();
    return pStartTime && pStartTime->data(Qt::UserRole).toBool()
        && (strSuffix == QLatin1String("ma") || strSuffix == QLatin1String("mb"));
}

void VTContextMenus::OfferArguments(bool bOffer)
{
    if (bOffer)
        m_submitMenu.addAction(pSetArgument); // adding it again does not duplicate it
    else
        m_submitMenu.removeAction(pSetArgument);
}

void VTContextMenus::Run(QMenu& menu, int nTab)
{
    // A menu that is run a second time would never return to its first caller.
    if (menu.isVisible())
        return;
    m_tables.Hold(nTab, &menu);
    menu.exec(QCursor::pos());
    m_tables.ForgetPress();
}

void VTContextMenus::Close()
{
    for (QMenu* pMenu : {&m_jobMenu, &m_submitMenu, &m_downloadMenu})
        pMenu->close();
}
