#include "mainwindow/vtr_toolbar.h"

#include "common/vtr_services.h"
#include "dialogs/vtr_group.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_timers.h"
#include "mainwindow/vtr_toolbarrules.h"

namespace {

constexpr int ButtonGap = 5; // pixels
constexpr int GroupPageOfConditions = 2;

} // namespace

VTToolbar::VTToolbar(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTToolbar::ChangeTab(int nTab)
{
    if (!m_deps.form.Table(nTab))
        return;
    m_deps.pageBar.Redraw(nTab);
    m_deps.tables.UncheckAll();
    m_deps.services.LogDebug(QStringLiteral("index: %1").arg(nTab));
    SwitchTimers(nTab);
    ApplyRules(VTToolbarRules::ForTab(nTab));
    if (nTab == VTList::Jobs)
        m_deps.form.btnRecover->setToolTip(tr("Recover"));
    if (nTab == VTList::Jobs && m_deps.group.CurrentPage() == GroupPageOfConditions)
        m_deps.jobList.SetConditions(m_deps.group.CurrentProjectCondition());
    ShowPage(nTab);
    m_deps.form.RaiseOverlays();
}

void VTToolbar::ShowPage(int nTab)
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

void VTToolbar::SwitchTimers(int nTab) const
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

void VTToolbar::ApplyRules(const VTToolbarRules& rules) const
{
    const VTMainForm& form = m_deps.form;
    form.btnFullRender->setVisible(rules.bFullRender);
    form.btnRestart->setVisible(rules.bRestart);
    form.btnSearch->setVisible(rules.bSearch);
    form.btnRecover->setVisible(rules.bRecover);
    form.btnPause->setVisible(rules.bPause);
    PlaceDelete(rules);
    form.btnDelete->setVisible(rules.bDelete);
}

void VTToolbar::PlaceDelete(const VTToolbarRules& rules) const
{
    const VTMainForm& form = m_deps.form;
    if (rules.deletePlace == VTToolbarRules::DeletePlace::Unmoved)
        return;
    const bool bBesideRestart = rules.deletePlace == VTToolbarRules::DeletePlace::BesideRestart;
    const QPushButton* pAnchor = bBesideRestart ? form.btnRestart : form.btnPause;
    form.btnDelete->move(pAnchor->x() + pAnchor->width() + ButtonGap, form.btnDelete->y());
}

void VTToolbar::Relayout()
{
    const int nTab = m_deps.form.tbwContainer->currentIndex();
    if (!m_deps.form.Table(nTab))
        return;
    m_deps.pageBar.Redraw(nTab);
    m_deps.tables.SpreadColumns(nTab);
    PlaceDelete(VTToolbarRules::ForTab(nTab));
}

void VTToolbar::ApplyCondition(const QString& strCondition)
{
    if (m_deps.form.tbwContainer->currentIndex() != VTList::Jobs)
        m_deps.form.tbwContainer->setCurrentIndex(VTList::Jobs);
    m_deps.jobList.SetConditions(strCondition);
    m_deps.timers.pSubmitList->stop();
    m_deps.timers.pDownloadList->stop();
    m_deps.jobList.RequestPage(1);
}
