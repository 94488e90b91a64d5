#pragma once

#include <array>

/// The client's three lists, numbered like their tabs.
namespace VTList {
enum { Jobs, LocalTasks, Downloads, Count };
}

inline constexpr int VTPageSize = 18;
inline constexpr int VTPagesPerGroup = 5;

/// Position in a list that is shown page by page, with the pages in groups of five. Pages and groups count from 1.
struct VTPageState
{
    /// A click on the page bar, or the key for the first or last page.
    enum class Step { PreviousGroup, PreviousPage, NextGroup, NextPage, Page };

    int nTotalPages = 1;
    int nCurrentPage = 1;
    int nTotalGroups = 1;
    int nCurrentGroup = 1;
    int nTotalRecords = 0;

    /// Computes pages and groups for a number of records. The position does not change.
    void Recount(int nRecords);

    /// Resets to page 1 of 1. The number of records is kept.
    void ResetPosition();

    /// @param nPage the page to go to, for Step::Page only.
    /// @return whether the page is to be shown; false when there is none, and then nothing changes.
    bool Move(Step step, int nPage = 0);

    /// Goes one page back, unless the first page is the current one, and to the group of that page. @return whether it
    /// did.
    bool StepBack();

    /// Goes one page back when the current page lies beyond the last of `nRecords` records.
    void StepBackWhenBeyond(int nRecords);

    /// Goes one page back when a deletion has just emptied the current page, and to the group of the current page.
    void CorrectAfterDeletion();

    /// Index of the first record of the current page.
    int FirstRecord() const { return (nCurrentPage - 1) * VTPageSize; }

    bool HasPreviousGroup() const { return nTotalPages > VTPagesPerGroup && nCurrentGroup != 1; }
    bool HasNextGroup() const { return nTotalPages > VTPagesPerGroup && nCurrentGroup != nTotalGroups; }

    /// Page of the page-number button with this index (1 to 5).
    int PageOfButton(int nIndex) const { return (nCurrentGroup - 1) * VTPagesPerGroup + nIndex; }
};

/// The page states of the three lists.
using VTPageStates = std::array<VTPageState, VTList::Count>;
