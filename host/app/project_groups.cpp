#include "host/app/project_groups.h"

#include "common/vtr_filename.h"
#include "common/vtr_listfile.h"
#include "host/farmclient/farm_protocol.h"
#include "host/farmclient/http_call.h"
#include "host/services/communication_service.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int Pause = 5000; // ms; on a busy farm jobs are added all the time

/// The window keeps its groups in this file, and a group without jobs holds one empty text there.
const QLatin1String GroupFolder("Data");
const QLatin1String GroupSection("jobgroup");

/// The window asks for this id when the chosen group has no jobs.
const QLatin1String NoJob("abcdefg");

/// @return the conditions for the jobs of a project.
QString ConditionsOf(const QString& pool)
{
    const QJsonObject conditions {{QStringLiteral("pool_id"), pool}};
    return QString::fromUtf8(QJsonDocument(conditions).toJson(QJsonDocument::Compact));
}

QStringList IdsOf(const VTListFile& file, const QString& group)
{
    QStringList ids = file.Value(group);
    ids.removeAll({});
    return ids;
}

} // namespace

ProjectGroups::ProjectGroups(
    CommunicationService* communication, VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_communication(communication)
    , m_settings(settings)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(Pause);
    connect(&m_pause, &QTimer::timeout, this, &ProjectGroups::FillAll);
    connect(communication, &CommunicationService::ProjectListResponse, this, &ProjectGroups::HandleProjects);
    connect(communication, &CommunicationService::FarmChanged, this, &ProjectGroups::HandleChanges);
    communication->SetConditionsTranslation(
        [this](const QString& conditions) { return ProjectConditions(conditions); });
}

ProjectGroups::~ProjectGroups()
{
    m_communication->SetConditionsTranslation({});
}

void ProjectGroups::BeginSession(const QString& userName, const QString& token)
{
    EndSession();
    m_userName = userName;
    m_token = token;
    m_file = std::make_unique<VTListFile>(
        VTAccountFile(GroupFolder, m_settings->Value(SettingKeys::ServerName, {}).toString(),
            m_settings->Value(SettingKeys::LastName, {}).toString()),
        GroupSection);
}

void ProjectGroups::EndSession()
{
    m_pause.stop();
    m_file.reset();
    m_token.clear();
    m_pools.clear();
    m_underWay.clear();
    m_chosenConditions.clear();
}

void ProjectGroups::Follow(const QString& group)
{
    const QString pool = m_pools.value(group);
    if (!m_file || pool.isEmpty() || !m_file->Contains(group) || !IdsOf(*m_file, group).isEmpty())
        return;
    QVariantMap followed = Followed();
    followed.insert(group, pool);
    m_settings->SetValue(SettingKey(), followed);
    Fill({group, pool});
}

void ProjectGroups::HandleProjects(int code, const QVariantMap& answer)
{
    if (code != HttpStatus::Ok || !m_file)
        return;
    m_pools.clear();
    QStringList names;
    const QVariantList projects = answer.value(QStringLiteral("data")).toList();
    for (const QVariant& entry : projects) {
        const QVariantMap project = entry.toMap();
        const QString name = project.value(QStringLiteral("project_name")).toString().trimmed();
        const QString pool = project.value(QStringLiteral("project_pool")).toString();
        if (name.isEmpty() || pool.isEmpty() || m_pools.contains(name))
            continue;
        m_pools.insert(name, pool);
        names.append(name);
    }
    emit ProjectsListed(names);
    FillAll();
}

void ProjectGroups::HandleChanges(const FarmChanges& changes)
{
    if (changes.list && m_file && !m_pause.isActive())
        m_pause.start();
}

void ProjectGroups::FillAll()
{
    const QVariantMap followed = Followed();
    for (auto entry = followed.begin(); entry != followed.end(); ++entry)
        Fill({entry.key(), entry.value().toString()});
}

/// Requests the project's jobs page by page, until one is known already or none is left.
void ProjectGroups::Fill(const Filling& filling)
{
    const bool isFirst = filling.page == 1;
    if (!m_file || !m_file->Contains(filling.group) || (isFirst && m_underWay.contains(filling.group)))
        return;
    m_underWay.insert(filling.group);
    const HttpCall* call = m_communication->Ask(FarmProtocol::JobListRequest(
        {{QStringLiteral("page"), filling.page}, {QStringLiteral("pageSize"), PageSize},
            {QStringLiteral("token"), m_token}, {QStringLiteral("conditions"), ConditionsOf(filling.pool)}}));
    connect(call, &HttpCall::Finished, this,
        [this, filling](const HttpResult& result) { HandleJobs(filling, result); });
}

void ProjectGroups::HandleJobs(Filling filling, const HttpResult& result)
{
    if (!m_file)
        return;
    m_underWay.remove(filling.group);
    // The next change on the farm or the next session tries again.
    if (result.status != HttpStatus::Ok || !FarmProtocol::IsJobList(result.json)
        || !m_file->Contains(filling.group))
        return;
    const QStringList known = IdsOf(*m_file, filling.group);
    const QSet<QString> knownIds(known.begin(), known.end());
    const QJsonArray jobs = result.json[QLatin1String("data")][QLatin1String("list")].toArray();
    bool isComplete = jobs.size() < PageSize;
    for (const QJsonValue& job : jobs) {
        const QString id = job[QLatin1String("job_id")].toString();
        if (knownIds.contains(id))
            isComplete = true;
        else if (!id.isEmpty())
            filling.newIds.append(id);
    }
    ++filling.page;
    if (isComplete || filling.newIds.size() >= MostJobs)
        Store(filling, known);
    else
        Fill(filling);
}

void ProjectGroups::Store(const Filling& filling, const QStringList& known)
{
    if (filling.newIds.isEmpty())
        return;
    QStringList ids = filling.newIds + known;
    ids.removeDuplicates(); // a job added in the meantime has moved others to the next page
    if (!m_file->Set(filling.group, QStringList(ids.mid(0, MostJobs))))
        qWarning("the group of a project cannot be saved: %s", qUtf8Printable(m_file->Path()));
}

/// @return the conditions of a project in place of those of the chosen group that is named after it; others unchanged.
QString ProjectGroups::ProjectConditions(const QString& conditions)
{
    if (!m_file || !conditions.contains(QLatin1String("job_guid")))
        return conditions;
    const QString login = m_settings->Value(SettingKeys::LastName, {}).toString();
    const QString group = m_settings->Value(SettingKeys::OfAccount(login, "currentproject"), {}).toString();
    const QString pool = Followed().value(group).toString();
    if (pool.isEmpty())
        return conditions;
    // The group has grown since it was chosen, when a new job of the project has been stored in it.
    if (conditions != m_chosenConditions || group != m_chosen) {
        const QString ids = IdsOf(*m_file, group).join(QLatin1Char(','));
        const QJsonObject asked = QJsonDocument::fromJson(conditions.toUtf8()).object();
        if (asked.value(QLatin1String("job_guid")).toString() != (ids.isEmpty() ? NoJob : ids))
            return conditions;
        m_chosen = group;
        m_chosenConditions = conditions;
    }
    return ConditionsOf(pool);
}

QString ProjectGroups::SettingKey() const
{
    return SettingKeys::OfAccount(m_userName, "projectgroups");
}

/// @return the pools of the groups that are filled, by name.
QVariantMap ProjectGroups::Followed() const
{
    return m_settings->Value(SettingKey(), {}).toMap();
}
