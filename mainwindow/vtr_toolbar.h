#pragma once

#include <QCoreApplication>
#include <QString>

class VTDownloadList;
class VTGroup;
class VTJobList;
class VTPageBar;
class VTSubmitList;
class VTTables;
struct VTMainForm;
struct VTServices;
struct VTTimers;
struct VTToolbarRules;

/// The toolbar and what else changes with the tab.
class VTToolbar
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTTimers& timers;
        const VTTables& tables;
        VTGroup& group;
        VTPageBar& pageBar;
        VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
    };

    /// What the needs refer to must outlive this object.
    explicit VTToolbar(const Dependencies& dependencies);

    /// Sets buttons, timers and content for a tab that has come to the front.
    void ChangeTab(int nTab);

    /// Shows the current page of a list again.
    void ShowPage(int nTab);

    /// After the window has changed its size: page bar, columns and the delete button of the current tab.
    void Relayout();

    /// Conditions from the group panel: brings the farm's jobs to the front and asks for page 1.
    void ApplyCondition(const QString& strCondition);

private:
    void ApplyRules(const VTToolbarRules& rules) const;
    void PlaceDelete(const VTToolbarRules& rules) const;
    void SwitchTimers(int nTab) const;

    Dependencies m_deps;
};
