#include "mainwindow/vtr_pagestate.h"

#include <QtGlobal>

namespace {

int RoundedUp(int nCount, int nPer)
{
    return nCount / nPer + (nCount % nPer != 0 ? 1 : 0);
}

} // namespace

void VTPageState::Recount(int nRecords)
{
    nTotalPages = nRecords <= 0 ? 1 : RoundedUp(nRecords, VTPageSize);
    nTotalGroups = RoundedUp(nTotalPages, VTPagesPerGroup);
    nTotalRecords = nRecords;
}

void VTPageState::ResetPosition()
{
    const int nRecords = nTotalRecords;
    *this = VTPageState();
    nTotalRecords = nRecords;
}

bool VTPageState::Move(Step step, int nPage)
{
    int nGroup = nCurrentGroup;
    switch (step) {
    case Step::PreviousGroup:
        nPage = --nGroup * VTPagesPerGroup;
        break;
    case Step::PreviousPage:
        nPage = nCurrentPage - 1;
        if (nPage <= (nGroup - 1) * VTPagesPerGroup)
            --nGroup;
        break;
    case Step::NextGroup:
        nPage = nGroup++ * VTPagesPerGroup + 1;
        break;
    case Step::NextPage:
        nPage = nCurrentPage + 1;
        if (nPage > nGroup * VTPagesPerGroup)
            ++nGroup;
        break;
    case Step::Page:
        nGroup = RoundedUp(nPage, VTPagesPerGroup);
        break;
    }
    // The list may have become shorter than the current page; then each way back leads to its last page.
    if (nCurrentPage > nTotalPages && (step == Step::PreviousGroup || step == Step::PreviousPage)) {
        nPage = qMin(nPage, nTotalPages);
        nGroup = RoundedUp(nPage, VTPagesPerGroup);
    }
    if (nPage < 1 || nPage > nTotalPages)
        return false;
    nCurrentPage = nPage;
    nCurrentGroup = qBound(1, nGroup, nTotalGroups);
    return true;
}

bool VTPageState::StepBack()
{
    if (nCurrentPage <= 1)
        return false;
    --nCurrentPage;
    nCurrentGroup = RoundedUp(nCurrentPage, VTPagesPerGroup);
    return true;
}

void VTPageState::StepBackWhenBeyond(int nRecords)
{
    if (FirstRecord() < nRecords || !StepBack())
        return;
    // The list may have shrunk by more than one page, and the bar needs a group that has pages.
    VTPageState shrunk;
    shrunk.Recount(nRecords);
    nCurrentGroup = qMin(nCurrentGroup, shrunk.nTotalGroups);
}

void VTPageState::CorrectAfterDeletion()
{
    if (FirstRecord() == nTotalRecords)
        StepBack();
    nCurrentGroup = RoundedUp(nCurrentPage, VTPagesPerGroup);
}
