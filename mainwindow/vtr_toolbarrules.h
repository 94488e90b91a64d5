#pragma once

/// Which action buttons a tab of the main form has.
struct VTToolbarRules
{
    enum class DeletePlace { Unmoved, BesideRestart, BesidePause };

    bool bFullRender = false;
    bool bRestart = false;
    bool bSearch = false;
    bool bRecover = false;
    bool bPause = false;
    bool bDelete = false;
    /// The button that btnDelete stands right of.
    DeletePlace deletePlace = DeletePlace::Unmoved;

    static VTToolbarRules ForTab(int nTab);
};
