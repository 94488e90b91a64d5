#include "mainwindow/vtr_pagebar.h"

#include "common/vtr_services.h"
#include "mainwindow/vtr_mainform.h"

#include <QVariant>

namespace {

constexpr char IndexProperty[] = "index";

} // namespace

VTPageBar::VTPageBar(const VTMainForm& form, const VTServices& services)
    : m_form(form)
    , m_services(services)
{
    for (int i = 0; i < VTPagesPerGroup; ++i)
        m_form.btnPages.at(std::size_t(i))->setProperty(IndexProperty, i + 1);
}

void VTPageBar::Show(int nList, int nTotal)
{
    m_services.LogDebug(QStringLiteral("total: %1").arg(nTotal));
    VTPageState& state = State(nList);
    state.Recount(nTotal);
    SetVisibleButtons(state);
    PlaceButtons(state);
}

void VTPageBar::SetVisibleButtons(const VTPageState& state)
{
    m_form.btnPreGroup->setVisible(state.HasPreviousGroup());
    m_form.btnNextGroup->setVisible(state.HasNextGroup());
    for (QPushButton* btnPage : m_form.btnPages)
        btnPage->setVisible(
            state.PageOfButton(btnPage->property(IndexProperty).toInt()) <= state.nTotalPages);
}

void VTPageBar::PlaceButtons(const VTPageState& state)
{
    const QPushButton* pPrevious = nullptr;
    for (QPushButton* pButton : m_form.PageButtons()) {
        if (!pButton->isVisibleTo(m_form.pForm))
            continue;
        if (pPrevious)
            pButton->move(pPrevious->x() - pButton->width(), pButton->y());
        pPrevious = pButton;

        const int nIndex = pButton->property(IndexProperty).toInt();
        if (nIndex <= 0)
            continue;
        const int nPage = state.PageOfButton(nIndex);
        pButton->setText(QString::number(nPage));
        // The focus marks the current page.
        if (nPage == state.nCurrentPage)
            pButton->setFocus();
    }
}

bool VTPageBar::Click(const QPushButton* pButton, int nList)
{
    VTPageState& state = State(nList);
    if (pButton == m_form.btnPreGroup)
        return state.Move(VTPageState::Step::PreviousGroup);
    if (pButton == m_form.btnPrePage)
        return state.Move(VTPageState::Step::PreviousPage);
    if (pButton == m_form.btnNextGroup)
        return state.Move(VTPageState::Step::NextGroup);
    if (pButton == m_form.btnNextPage)
        return state.Move(VTPageState::Step::NextPage);
    return state.Move(VTPageState::Step::Page, pButton->text().toInt());
}

int VTPageBar::CorrectAfterDeletion(int nList)
{
    State(nList).CorrectAfterDeletion();
    Redraw(nList);
    return CurrentPage(nList);
}
