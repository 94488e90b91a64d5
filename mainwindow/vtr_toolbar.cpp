#include "mainwindow/vtr_toolbar.h"

#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_toolbarrules.h"

namespace {

constexpr int ButtonGap = 5; // pixels

} // namespace

VTToolbar::VTToolbar(const VTMainForm& form)
    : m_form(form)
{
}

void VTToolbar::ShowFor(int nTab) const
{
    const VTToolbarRules rules = VTToolbarRules::ForTab(nTab);
    m_form.btnFullRender->setVisible(rules.bFullRender);
    m_form.btnRestart->setVisible(rules.bRestart);
    m_form.btnSearch->setVisible(rules.bSearch);
    m_form.btnRecover->setVisible(rules.bRecover);
    m_form.btnPause->setVisible(rules.bPause);
    PlaceDelete(nTab);
    m_form.btnDelete->setVisible(rules.bDelete);
    if (nTab == VTList::Jobs)
        m_form.btnRecover->setToolTip(tr("Recover"));
}

void VTToolbar::PlaceDelete(int nTab) const
{
    const QPushButton* pAnchor = nullptr;
    switch (VTToolbarRules::ForTab(nTab).deletePlace) {
    case VTToolbarRules::DeletePlace::Unmoved:
        return;
    case VTToolbarRules::DeletePlace::BesideRestart:
        pAnchor = m_form.btnRestart;
        break;
    case VTToolbarRules::DeletePlace::BesidePause:
        pAnchor = m_form.btnPause;
        break;
    }
    m_form.btnDelete->move(pAnchor->x() + pAnchor->width() + ButtonGap, m_form.btnDelete->y());
}
