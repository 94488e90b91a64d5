#include "mainwindow/vtr_pagestate.h"

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
    switch (step) {
    case Step::PreviousGroup:
        --nCurrentGroup;
        nCurrentPage = nCurrentGroup * VTPagesPerGroup;
        break;
    case Step::PreviousPage:
        if (nCurrentPage == 1)
            return false;
        if (--nCurrentPage <= (nCurrentGroup - 1) * VTPagesPerGroup)
            --nCurrentGroup;
        break;
    case Step::NextGroup:
        ++nCurrentGroup;
        nCurrentPage = PageOfButton(1);
        break;
    case Step::NextPage:
        if (nCurrentPage == nTotalPages)
            return false;
        if (++nCurrentPage > nCurrentGroup * VTPagesPerGroup)
            ++nCurrentGroup;
        break;
    case Step::Page:
        nCurrentPage = nPage;
        break;
    }
    if (nCurrentPage > nTotalPages)
        nCurrentPage = nTotalPages;
    return true;
}

void VTPageState::StepBackWhenBeyond(int nRecords)
{
    if (FirstRecord() >= nRecords && nCurrentPage > 1)
        --nCurrentPage;
}

void VTPageState::CorrectAfterDeletion()
{
    if (FirstRecord() == nTotalRecords && nCurrentPage != 1)
        --nCurrentPage;
    nCurrentGroup = RoundedUp(nCurrentPage, VTPagesPerGroup);
}
