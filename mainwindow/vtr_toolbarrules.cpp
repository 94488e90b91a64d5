#include "mainwindow/vtr_toolbarrules.h"

#include "mainwindow/vtr_pagestate.h"

VTToolbarRules VTToolbarRules::ForTab(int nTab)
{
    VTToolbarRules rules;
    const bool bJobs = nTab == VTList::Jobs;
    const bool bRemote = bJobs || nTab == VTList::Downloads;
    rules.bFullRender = rules.bRestart = rules.bSearch = bJobs;
    rules.bRecover = rules.bPause = rules.bDelete = bRemote;
    if (bRemote)
        rules.deletePlace = bJobs ? DeletePlace::BesideRestart : DeletePlace::BesidePause;
    return rules;
}
