#pragma once

#include "mainwindow/vtr_pagestate.h"

#include <tuple>

class QPushButton;
struct VTMainForm;
struct VTServices;

/// The bar of nine page buttons, which the three lists share, and the page state of each list.
///
/// The number of the current page has the dynamic property "current", by which skins mark it. It takes the keyboard
/// focus when the bar changes or after a click on it.
class VTPageBar
{
public:
    /// Both must outlive this object.
    VTPageBar(const VTMainForm& form, const VTServices& services);

    VTPageState& State(int nList) { return m_states.at(std::size_t(nList)); }
    int CurrentPage(int nList) { return State(nList).nCurrentPage; }

    /// Recomputes a list's pages and draws the bar for it.
    void Show(int nList, int nTotal);

    /// Draws the bar for a list with its stored number of records.
    void Redraw(int nList) { Show(nList, State(nList).nTotalRecords); }

    /// Moves the list for a click on a page button. @return whether a page is to be shown.
    bool Click(const QPushButton* pButton, int nList);

    /// Goes to a page as a click on its number does. @return whether it is to be shown.
    bool GoTo(int nPage, int nList);

    /// Corrects a list's position after rows were deleted, and redraws the bar if it belongs to the list. @return the
    /// page to show.
    int CorrectAfterDeletion(int nList);

    /// Forgets the last click, because its page will not arrive; the next redraw then does not take the focus for it.
    void ForgetClick() { m_bClicked = false; }

    void Reset() { m_states = VTPageStates(); }

private:
    /// The list that the bar belongs to, and the parts of its state that the bar shows.
    using Look = std::tuple<int, int, int, int>;

    bool Move(int nList, VTPageState::Step step, int nPage = 0);
    void SetVisibleButtons(const VTPageState& state);
    void PlaceButtons(const VTPageState& state, bool bFocus);

    const VTMainForm& m_form;
    const VTServices& m_services;
    VTPageStates m_states;
    Look m_look {};
    bool m_bClicked = false; ///< whether it was clicked since it was drawn
};
