#pragma once

/// The action buttons that a tab of the main form has.
struct VTToolbarRules
{
    enum class DeletePlace { Unmoved, BesideRestart, BesidePause };

    bool bFullRender = false;
    bool bRestart = false;
    bool bSearch = false;
    bool bRecover = false;
    bool bPause = false;
    bool bDelete = false;
    /// Where `btnDelete` is placed.
    DeletePlace deletePlace = DeletePlace::Unmoved;

    static VTToolbarRules ForTab(int nTab);
};
