#include "host/app/live_refresh.h"

#include "common/vtr_tablerows.h"
#include "host/mainform/main_form.h"
#include "host/services/communication_service.h"

#include <QTableWidget>

namespace {

// A farm may announce changes more often than a person can read them, and each refresh costs processor time.
constexpr int LeastPause = 1000; // ms

} // namespace

LiveRefresh::LiveRefresh(CommunicationService* communication, QObject* parent)
    : QObject(parent)
    , m_communication(communication)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(LeastPause);
    connect(&m_pause, &QTimer::timeout, this, &LiveRefresh::Refresh);
    connect(communication, &CommunicationService::FarmChanged, this, &LiveRefresh::HandleChanges);
    connect(communication, &CommunicationService::JobListResponse, this, &LiveRefresh::Refresh);
}

void LiveRefresh::BeginSession(const QString& /*userName*/, const QString& token)
{
    m_communication->FollowChanges(token);
}

void LiveRefresh::EndSession()
{
    m_pause.stop();
    m_listIsDue = false;
    m_moneyIsDue = false;
}

void LiveRefresh::HandleChanges(const FarmChanges& changes)
{
    m_listIsDue = m_listIsDue || changes.list || ShowsOneOf(changes.jobs);
    m_moneyIsDue |= changes.money;
    Refresh();
}

void LiveRefresh::Refresh()
{
    if (m_pause.isActive())
        return;
    // A list on its way may be older than the change, so the refresh waits for it. If the refresh replaced the list,
    // none might ever arrive over a slow link.
    const bool refreshesList = m_listIsDue && !m_communication->IsFetchingJobs();
    const bool refreshesMoney = m_moneyIsDue;
    if (!refreshesList && !refreshesMoney)
        return;
    m_pause.start();
    m_moneyIsDue = false;
    if (refreshesList) {
        m_listIsDue = false;
        Invoke("RefreshJobList");
    }
    if (refreshesMoney)
        Invoke("GetUserInfo");
}

void LiveRefresh::Invoke(const char* slot)
{
    if (!m_window)
        m_window = FindMainWindow();
    if (m_window)
        QMetaObject::invokeMethod(m_window, slot);
}

bool LiveRefresh::ShowsOneOf(const QStringList& jobs)
{
    if (!m_table)
        m_table = FindJobTable();
    for (int row = 0; m_table && row < m_table->rowCount(); ++row) {
        if (jobs.contains(VTTableRows::Id(m_table, row)))
            return true;
    }
    return false;
}
