#include "host/mainform/list_hints.h"

#include "host/mainform/list_hint.h"
#include "host/mainform/main_form.h"

#include <QAction>
#include <QListWidget>
#include <QTableWidget>

namespace {

constexpr HintTexts NoJobs {QT_TRANSLATE_NOOP("ListHint", "No jobs yet"),
    QT_TRANSLATE_NOOP("ListHint", "Press Submit or drop a scene here.")};
constexpr HintTexts NoMatch {QT_TRANSLATE_NOOP("ListHint", "No jobs match"),
    QT_TRANSLATE_NOOP("ListHint", "The search or group above the list hides all others."),
    QT_TRANSLATE_NOOP("ListHint", "Show all jobs")};
constexpr HintTexts NoTasks {QT_TRANSLATE_NOOP("ListHint", "No scene is on its way to the farm"),
    QT_TRANSLATE_NOOP("ListHint", "Press Submit or drop a scene here.")};
constexpr HintTexts NoDownloads {QT_TRANSLATE_NOOP("ListHint", "No downloads yet"),
    QT_TRANSLATE_NOOP("ListHint",
        "Right-click a job under My Render and choose Download, or let the settings download finished "
        "jobs.")};
constexpr HintTexts NoGroups {QT_TRANSLATE_NOOP("ListHint", "No groups yet"),
    QT_TRANSLATE_NOOP("ListHint", "A group lists the jobs of one of your projects."),
    QT_TRANSLATE_NOOP("ListHint", "Add a group…")};

ListHint* AddHint(QAbstractItemView* list, const HintTexts& texts)
{
    auto* hint = list ? new ListHint(list) : nullptr;
    if (hint)
        hint->SetTexts(texts);
    return hint;
}

} // namespace

void ListHints::BeginSession()
{
    QWidget* form = FindMainForm();
    if (!form)
        return;
    if (form != m_form) {
        m_form = form;
        m_jobs = AddHint(FindJobTable(), {});
        AddHint(FindTable(QStringLiteral("twtLocalTask")), NoTasks);
        AddHint(FindDownloadTable(), NoDownloads);
        if (const ListHint* groups = AddHint(FindGroupList(), NoGroups))
            connect(groups, &ListHint::ButtonClicked, FindGroupActions().add, &QAction::trigger);
        if (m_jobs)
            connect(m_jobs, &ListHint::ButtonClicked, this, &ListHints::AllJobsRequested);
    }
    if (m_jobs)
        m_jobs->SetTexts({});
}

void ListHints::HandleJobsListed(bool isFiltered)
{
    if (m_jobs)
        m_jobs->SetTexts(isFiltered ? NoMatch : NoJobs);
}
