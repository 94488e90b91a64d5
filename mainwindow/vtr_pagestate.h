#pragma once

#include <array>

/// The client's three lists; the numbers are also the tabs of the main form.
namespace VTList {
enum { Jobs, LocalTasks, Downloads, Count };
}

inline constexpr int VTPageSize = 18;
inline constexpr int VTPagesPerGroup = 5;

/// Position in one list that is shown page by page, with the pages in groups of five. Pages and groups count from 1.
struct VTPageState
{
    /// A click on the page bar.
    enum class Step { PreviousGroup, PreviousPage, NextGroup, NextPage, Page };

    int nTotalPages = 1;
    int nCurrentPage = 1;
    int nTotalGroups = 1;
    int nCurrentGroup = 1;
    int nTotalRecords = 0;

    /// Recomputes pages and groups for a number of records; the position is left alone.
    void Recount(int nRecords);

    /// Back to page 1 with one page; the number of records is kept.
    void ResetPosition();

    /// @param nPage the page asked for, used by Step::Page only.
    /// @return whether the page is to be shown; false when the step leads nowhere.
    bool Move(Step step, int nPage = 0);

    /// One page back when the current page lies behind the last of nRecords.
    void StepBackWhenBeyond(int nRecords);

    /// After a deletion: one page back when the current page has just been emptied, and the group that belongs to it.
    void CorrectAfterDeletion();

    /// Index of the first record of the current page.
    int FirstRecord() const { return (nCurrentPage - 1) * VTPageSize; }

    bool HasPreviousGroup() const { return nTotalPages > VTPagesPerGroup && nCurrentGroup != 1; }
    bool HasNextGroup() const { return nTotalPages > VTPagesPerGroup && nCurrentGroup != nTotalGroups; }

    /// Page that the button with this index (1 to 5) stands for.
    int PageOfButton(int nIndex) const { return (nCurrentGroup - 1) * VTPagesPerGroup + nIndex; }
};

/// The page states of the three lists.
using VTPageStates = std::array<VTPageState, VTList::Count>;
