#include "mainwindow/vtr_pagebar.h"

#include "common/vtr_services.h"
#include "mainwindow/vtr_mainform.h"

#include <QStyle>
#include <QVariant>

namespace {

constexpr char IndexProperty[] = "index";
constexpr char CurrentProperty[] = "current";

/// Marks a page number as the current one, or not, for the style sheet.
void MarkCurrent(QPushButton* pButton, bool bCurrent)
{
    if (pButton->property(CurrentProperty).toBool() == bCurrent)
        return;
    pButton->setProperty(CurrentProperty, bCurrent);
    // A style sheet does not follow a property by itself.
    pButton->style()->polish(pButton);
}

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

    const Look look {nList, state.nTotalPages, state.nCurrentGroup, state.nCurrentPage};
    const bool bFocus = look != m_look || m_bClicked;
    m_look = look;
    m_bClicked = false;
    PlaceButtons(state, bFocus);
}

void VTPageBar::SetVisibleButtons(const VTPageState& state)
{
    m_form.btnPreGroup->setVisible(state.HasPreviousGroup());
    m_form.btnNextGroup->setVisible(state.HasNextGroup());
    for (QPushButton* btnPage : m_form.btnPages)
        btnPage->setVisible(
            state.PageOfButton(btnPage->property(IndexProperty).toInt()) <= state.nTotalPages);
}

void VTPageBar::PlaceButtons(const VTPageState& state, bool bFocus)
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
        const bool bCurrent = nPage == state.nCurrentPage;
        MarkCurrent(pButton, bCurrent);
        if (bCurrent && bFocus)
            pButton->setFocus();
    }
}

bool VTPageBar::Click(const QPushButton* pButton, int nList)
{
    if (pButton == m_form.btnPreGroup)
        return Move(nList, VTPageState::Step::PreviousGroup);
    if (pButton == m_form.btnPrePage)
        return Move(nList, VTPageState::Step::PreviousPage);
    if (pButton == m_form.btnNextGroup)
        return Move(nList, VTPageState::Step::NextGroup);
    if (pButton == m_form.btnNextPage)
        return Move(nList, VTPageState::Step::NextPage);
    return GoTo(pButton->text().toInt(), nList);
}

bool VTPageBar::GoTo(int nPage, int nList)
{
    return Move(nList, VTPageState::Step::Page, nPage);
}

bool VTPageBar::Move(int nList, VTPageState::Step step, int nPage)
{
    const bool bMoved = State(nList).Move(step, nPage);
    m_bClicked = m_bClicked || bMoved;
    return bMoved;
}

int VTPageBar::CorrectAfterDeletion(int nList)
{
    State(nList).CorrectAfterDeletion();
    if (m_form.tbwContainer->currentIndex() == nList)
        Redraw(nList);
    return CurrentPage(nList);
}
