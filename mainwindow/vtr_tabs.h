#pragma once

#include <QString>

class QObject;
class VTContextMenus;
class VTDownloadList;
class VTGroup;
class VTJobList;
class VTPageBar;
class VTSubmitList;
class VTTables;
class VTToolbar;
struct VTMainForm;
struct VTServices;
struct VTSession;
struct VTTimers;

/// Switches list, page bar, toolbar and timers when another tab comes to the front, and turns the pages of that tab's
/// list.
class VTTabs
{
public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTSession& session;
        const VTTimers& timers;
        const VTTables& tables;
        const VTToolbar& toolbar;
        VTGroup& group;
        VTContextMenus& menus;
        VTPageBar& pageBar;
        VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTTabs(const Dependencies& dependencies);

    /// Sets page bar, toolbar and timers for the tab that has come to the front, and shows its current page.
    void HandleChange(int nTab);

    /// Moves the list for a click on a page button, and shows the page.
    void HandlePageButton(const QObject* pButton);

    void GoToFirstPage();
    void GoToLastPage();

    /// Runs the context menu of a tab, then brings its table up to date.
    void RunMenu(int nTab);

    /// Filters the farm's jobs by conditions from the group panel: brings their tab to the front and requests page 1.
    void FilterJobs(const QString& strConditions);

    /// Adapts page bar, columns and delete button of the current tab to the window's new size.
    void Relayout();

private:
    void GoToPage(int nPage);
    void ShowMovedPage(int nTab);
    void ShowCurrentPage(int nTab);
    void SwitchTimers(int nTab) const;

    Dependencies m_deps;
};
