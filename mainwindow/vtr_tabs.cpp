#include "mainwindow/vtr_tabs.h"

#include "common/vtr_services.h"
#include "dialogs/vtr_group.h"
#include "mainwindow/vtr_contextmenus.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_timers.h"
#include "mainwindow/vtr_toolbar.h"

namespace {

/// Page of the group panel on which a tab change rereads the current project's conditions.
constexpr int GroupPageOfConditions = 2; // contract: the panel has pages 0 and 1 only

} // namespace

VTTabs::VTTabs(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTTabs::HandleChange(int nTab)
{
    if (!m_deps.form.Table(nTab))
        return;
    m_deps.pageBar.Redraw(nTab);
    m_deps.tables.UncheckAll();
    m_deps.services.LogDebug(QStringLiteral("index: %1").arg(nTab));
    SwitchTimers(nTab);
    m_deps.toolbar.ShowFor(nTab);
    if (nTab == VTList::Jobs && m_deps.group.CurrentPage() == GroupPageOfConditions)
        m_deps.jobList.SetConditions(m_deps.group.CurrentProjectCondition());
    ShowCurrentPage(nTab);
    m_deps.form.RaiseOverlays();
}

void VTTabs::HandlePageButton(const QObject* pButton)
{
    const auto* pPageButton = qobject_cast<const QPushButton*>(pButton);
    const int nTab = m_deps.form.tbwContainer->currentIndex();
    if (pPageButton && m_deps.form.Table(nTab) && m_deps.pageBar.Click(pPageButton, nTab))
        ShowMovedPage(nTab);
}

void VTTabs::GoToFirstPage()
{
    GoToPage(1);
}

void VTTabs::GoToLastPage()
{
    GoToPage(m_deps.pageBar.State(m_deps.form.tbwContainer->currentIndex()).nTotalPages);
}

void VTTabs::GoToPage(int nPage)
{
    const int nTab = m_deps.form.tbwContainer->currentIndex();
    if (m_deps.pageBar.GoTo(nPage, nTab))
        ShowMovedPage(nTab);
}

void VTTabs::ShowMovedPage(int nTab)
{
    // The bar of the farm's jobs is redrawn when the answer arrives.
    if (nTab != VTList::Jobs)
        m_deps.pageBar.Redraw(nTab);
    m_deps.form.Table(nTab)->scrollToTop();
    ShowCurrentPage(nTab);
}

void VTTabs::RunMenu(int nTab)
{
    const int nSession = m_deps.session.nNumber;
    m_deps.menus.Run(nTab);
    if (m_deps.session.nNumber != nSession)
        return;
    m_deps.jobList.ShowHeldAnswer();
    m_deps.submitList.CatchUp();
    m_deps.downloadList.CatchUp();
}

void VTTabs::FilterJobs(const QString& strConditions)
{
    if (m_deps.form.tbwContainer->currentIndex() != VTList::Jobs)
        m_deps.form.tbwContainer->setCurrentIndex(VTList::Jobs);
    m_deps.jobList.SetConditions(strConditions);
    m_deps.timers.pSubmitList->stop();
    m_deps.timers.pDownloadList->stop();
    m_deps.jobList.RequestPage(1);
}

void VTTabs::Relayout()
{
    const int nTab = m_deps.form.tbwContainer->currentIndex();
    if (!m_deps.form.Table(nTab))
        return;
    m_deps.pageBar.Redraw(nTab);
    m_deps.tables.SpreadColumns(nTab);
    m_deps.toolbar.PlaceDelete(nTab);
}

void VTTabs::ShowCurrentPage(int nTab)
{
    switch (nTab) {
    case VTList::Jobs:
        m_deps.jobList.RequestCurrentPage();
        break;
    case VTList::LocalTasks:
        m_deps.submitList.BuildCurrentPage();
        break;
    case VTList::Downloads:
        m_deps.downloadList.BuildCurrentPage();
        break;
    default:
        break;
    }
}

void VTTabs::SwitchTimers(int nTab) const
{
    const auto Switch = [](QTimer* pTimer, bool bOn) {
        if (bOn)
            VTTimers::StartOnce(pTimer);
        else
            pTimer->stop();
    };
    Switch(m_deps.timers.pSubmitList, nTab == VTList::LocalTasks);
    Switch(m_deps.timers.pDownloadList, nTab == VTList::Downloads);
}
