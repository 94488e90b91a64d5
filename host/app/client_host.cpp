#include "host/app/client_host.h"

#include "host/app/live_refresh.h"
#include "host/app/project_groups.h"
#include "host/app/session_control.h"
#include "host/app/space_control.h"
#include "host/app/space_offer.h"
#include "host/farmclient/http_result.h"
#include "host/mainform/main_form.h"
#include "host/process/farm_process.h"
#include "host/settings/setting_keys.h"
#include "host/ui/skins.h"
#include "vtr_baseinterface.h"

#include <QDebug>
#include <QDir>
#include <QFile>

namespace {

// The embedded farm creates this account at its first start; its password is its name.
const QString DemoAccount = QStringLiteral("demo");

// The main window translates the server's name.
constexpr const char* EmbeddedServer = QT_TRANSLATE_NOOP("VTQsClientPrivate", "embedded");

constexpr int LongestPassword = 1024; // bytes

/// @return the first line of a file; a null string when the file cannot be read.
QString FirstLine(const QString& file)
{
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly))
        return {};
    QByteArray line = input.readLine(LongestPassword);
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

/// Names a server by its whole URL, because one machine may run several farms, on different ports or paths.
QString UniqueName(const QUrl& server)
{
    QString name = server.toString();
    while (name.endsWith(QLatin1Char('/')))
        name.chop(1);
    return name;
}

} // namespace

ClientHost::ClientHost(const HostOptions& options, QObject* parent)
    : QObject(parent)
    , m_options(options)
    , m_services(options)
    , m_frames(&m_services.loader)
    , m_follower(&m_services.settings)
    , m_closing(&m_services.settings)
    , m_connection(&m_services.feed, &m_services.loader)
    , m_transfers(&m_services.renderCore, &m_services.settings)
    , m_taskStatus([this](const QString& id) { return m_services.renderCore.HaltText(id); })
{
    ConnectForm();
}

ClientHost::~ClientHost()
{
    m_spaceOffer.reset();
    m_space.reset();
    m_projects.reset();
    m_refresh.reset();
    m_session.reset();
    m_runner.reset();
    UseNoServer();
    m_farm.reset();
}

bool ClientHost::Start(QString* error)
{
    if (!ChooseServer(error))
        return false;
    const bool embedded = m_options.server.isEmpty();
    // The plugin reads the server's name at sign-in.
    m_services.settings.SetValue(
        SettingKeys::ServerName, embedded ? QString::fromLatin1(EmbeddedServer) : m_options.server.host());
    // The embedded farm's address changes with each start, so a fixed name identifies it.
    m_services.renderCore.SetServerName(
        embedded ? QString::fromLatin1(EmbeddedServer) : UniqueName(m_options.server));

    if (!StartPlugin(error))
        return false;
    m_session = std::make_unique<SessionControl>(
        &m_services.loader, &m_services.communication, &m_services.settings, &m_services.messageBox);
    m_refresh = std::make_unique<LiveRefresh>(&m_services.communication);
    m_projects = std::make_unique<ProjectGroups>(&m_services.communication, &m_services.settings);
    m_space = std::make_unique<SpaceControl>(
        &m_services.communication, &m_services.messageBox, &m_services.loader);
    m_spaceOffer
        = std::make_unique<SpaceOffer>(&m_services.renderCore, &m_services.messageBox, &m_services.loader);
    ConnectSession();
    m_session->SetServer(ServerText());
    m_services.scenes.Submit(m_options.scenes, m_options.priority);
    if (!SetAccount(embedded, error))
        return false;

    if (embedded)
        StartFarm();
    else
        UseServer(m_options.server);
    return true;
}

/// An unusable configured server is not replaced by the embedded farm, which has other jobs.
bool ClientHost::ChooseServer(QString* error)
{
    const QString text = m_services.settings.Value(SettingKeys::ServerUrl, {}).toString().trimmed();
    if (!m_options.server.isEmpty() || text.isEmpty())
        return true;
    m_options.server = ServerUrl(text);
    if (!m_options.server.isEmpty())
        return true;
    *error = tr("The settings name a server that is not a URL the client can use: %1. Please correct %2 in "
                "%3, or clear it to use the embedded farm.")
                 .arg(QUrl(text).toDisplayString(), SettingKeys::ServerUrl,
                     QDir::toNativeSeparators(m_options.configFile));
    qCritical().noquote() << *error;
    m_services.messageBox.ShowMessage(MessageBoxService::Notice, QStringLiteral("QuillStar Client"), {},
        Skins::MainIcon(m_services.loader.GetSkin()), *error, {}, false);
    return false;
}

void ClientHost::ConnectForm()
{
    PreviewerService* previewer = &m_services.previewer;
    connect(&m_preview, &PreviewTrigger::PreviewRequested, previewer, &PreviewerService::Open);
    connect(&m_frames, &FramesWindow::PreviewRequested, previewer, &PreviewerService::OpenSeries);
    connect(&m_jobs, &JobTrigger::FramesRequested, &m_frames, &FramesWindow::Open);
    connect(&m_services.renderCore, &RenderCoreService::AccessChanged, &m_frames, &FramesWindow::SetAccess);
    connect(&m_services.communication, &CommunicationService::JobListResponse, &m_filter,
        &FilterBar::HandleJobList);
    connect(&m_filter, &FilterBar::JobsListed, &m_hints, &ListHints::HandleJobsListed);
    connect(&m_hints, &ListHints::AllJobsRequested, &m_filter, &FilterBar::ShowAll);
    connect(&m_transfers, &TransferButtons::RetryFailedRequested, &m_services.renderCore,
        &RenderCoreService::RetryFailedDownloads);
    connect(&m_shortcuts, &Shortcuts::RefreshRequested, this, &ClientHost::Refresh);
    connect(&m_transfers, &TransferButtons::Notice, &m_services.notices, &NoticeBoard::Show);
}

void ClientHost::Activate(const QStringList& scenes, int priority)
{
    m_services.scenes.Submit(scenes, priority);
    if (m_session)
        m_session->ShowWindow();
}

void ClientHost::ConnectSession()
{
    const SessionControl* session = m_session.get();
    connect(session, &SessionControl::SignedIn, this, &ClientHost::ShowClient);
    connect(
        session, &SessionControl::ProxyLoginGiven, &m_services.renderCore, &RenderCoreService::SetProxyLogin);
    connect(session, &SessionControl::SignedIn, &m_services.renderCore, &RenderCoreService::BeginSession);
    connect(session, &SessionControl::SignedOut, &m_services.renderCore, &RenderCoreService::EndSession);
    connect(session, &SessionControl::SignedIn, &m_services.scenes, &SceneIntake::BeginSession);
    connect(session, &SessionControl::SignedOut, &m_services.scenes, &SceneIntake::EndSession);
    connect(session, &SessionControl::SignedOut, &m_connection, &ConnectionView::EndSession);
    connect(session, &SessionControl::SignedOut, &m_services.previewer, &PreviewerService::EndSession);
    connect(session, &SessionControl::StartRequested, this, &ClientHost::TryAgain);
    connect(&m_connection, &ConnectionView::TryAgainRequested, this, &ClientHost::TryAgain);
    connect(session, &SessionControl::SignedIn, m_refresh.get(), &LiveRefresh::BeginSession);
    connect(session, &SessionControl::SignedOut, m_refresh.get(), &LiveRefresh::EndSession);
    connect(session, &SessionControl::SignedIn, m_projects.get(), &ProjectGroups::BeginSession);
    connect(session, &SessionControl::SignedOut, m_projects.get(), &ProjectGroups::EndSession);
    connect(session, &SessionControl::SignedOut, m_space.get(), &SpaceControl::EndSession);
    connect(session, &SessionControl::SignedOut, m_spaceOffer.get(), &SpaceOffer::EndSession);
    connect(m_spaceOffer.get(), &SpaceOffer::SpaceRequested, m_space.get(), &SpaceControl::Open);
    connect(m_space.get(), &SpaceControl::Freed, m_spaceOffer.get(), &SpaceOffer::Continue);
    connect(m_projects.get(), &ProjectGroups::ProjectsListed, &m_picker, &ProjectPicker::SetProjects);
    connect(&m_picker, &ProjectPicker::Named, m_projects.get(), &ProjectGroups::Follow);
}

bool ClientHost::StartPlugin(QString* error)
{
    try {
        m_runner = std::make_unique<PluginRunner>(m_options.dataFolder + QLatin1String("/framework"));
        m_services.RegisterWith(*m_runner);
        m_client = m_runner->Start(m_options.pluginFile, error);
    } catch (const std::exception& failure) {
        *error = QString::fromUtf8(failure.what());
    }
    if (!m_client)
        return false;
    m_client->Activate(1, {});
    return true;
}

/// @return empty for the embedded farm, which has no name of its own.
QString ClientHost::ServerText() const
{
    return m_options.server.toDisplayString(QUrl::RemoveUserInfo | QUrl::StripTrailingSlash);
}

bool ClientHost::SetAccount(bool embedded, QString* error)
{
    if (!m_options.user.isEmpty()) {
        const QString password = FirstLine(m_options.passwordFile);
        if (password.isEmpty()) {
            *error = QStringLiteral("cannot read a password from %1").arg(m_options.passwordFile);
            return false;
        }
        m_session->SetAccount(m_options.user, password);
    } else if (embedded) {
        m_session->SetAccount(DemoAccount, DemoAccount);
    }
    return true;
}

void ClientHost::UseServer(const QUrl& url)
{
    m_services.communication.SetServerUrl(url);
    m_services.renderCore.SetServerUrl(url, m_farm != nullptr);
    m_session->SetFarm(SignInWindow::Farm::Ready);
    if (!m_sessionBegun)
        BeginSession();
    else
        Refresh();
    m_sessionBegun = true;
}

void ClientHost::UseNoServer()
{
    m_services.communication.SetServerUrl({});
    m_services.renderCore.SetServerUrl({});
}

void ClientHost::StartFarm()
{
    m_farm
        = std::make_unique<FarmProcess>(m_options.farmProgram, m_options.dataFolder + QLatin1String("/farm"));
    connect(m_farm.get(), &FarmProcess::Listening, this, &ClientHost::UseServer);
    m_farm->SetTakeOver(m_options.takeOver);
    connect(m_farm.get(), &FarmProcess::Lost, this, &ClientHost::HandleLostFarm);
    connect(m_farm.get(), &FarmProcess::GivenUp, this, [this](const QString& reason) {
        qCritical().noquote() << "the embedded farm is not started again:" << reason;
        m_session->SetFarm(SignInWindow::Farm::Failed, reason);
    });
    m_session->SetFarm(SignInWindow::Farm::Starting);
    m_session->ShowSignIn();
    m_farm->Start();
}

void ClientHost::HandleLostFarm(const QString& reason)
{
    UseNoServer();
    m_services.feed.Report({}, {}, {FarmFault::Unreachable, FarmFault::NoServer, reason});
    m_session->SetFarm(SignInWindow::Farm::Starting, reason);
}

/// Starts the embedded farm if that has been given up, and asks for the list of jobs.
void ClientHost::TryAgain()
{
    if (m_farm && !m_farm->IsWanted()) {
        m_session->SetFarm(SignInWindow::Farm::Starting);
        m_farm->Start();
    }
    Refresh();
}

/// While nobody is signed in, the window does nothing.
void ClientHost::Refresh()
{
    QWidget* window = m_session->IsSignedIn() ? FindMainWindow() : nullptr;
    m_services.communication.DistrustAnnouncements();
    if (window)
        QMetaObject::invokeMethod(window, "RefreshJobList");
}

void ClientHost::BeginSession()
{
    if (m_options.autoSignIn)
        m_session->SignInAutomatically();
    else
        m_session->ShowSignIn();
}

void ClientHost::ShowClient(const QString& userName, const QString& token)
{
    m_services.configuration.SetUserName(userName);
    QVariant state;
    if (m_client->Show(state, {}) != 0)
        qCritical() << "cannot show the main window";
    m_preview.Attach();
    m_jobs.Attach();
    m_follower.BeginSession(userName);
    m_closing.BeginSession();
    m_filterMenu.BeginSession();
    m_shortcuts.BeginSession();
    m_connection.BeginSession(ServerText(), token);
    m_tips.BeginSession();
    m_filter.BeginSession();
    m_hints.BeginSession();
    m_transfers.BeginSession(userName);
    m_taskStatus.BeginSession();
    m_picker.BeginSession();
    m_space->BeginSession(token);
}
