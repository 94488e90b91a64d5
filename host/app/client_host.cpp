#include "host/app/client_host.h"

#include "host/app/session_control.h"
#include "host/process/farm_process.h"
#include "vtr_baseinterface.h"

#include <QDebug>
#include <QFile>

namespace {

// The embedded farm's own account, made at its first start.
const QString kDemoAccount = QStringLiteral("demo");

// The main window shows the server's name translated.
constexpr const char* kEmbeddedServer = QT_TRANSLATE_NOOP("VTQsClientPrivate", "embedded");

constexpr int kLongestPassword = 1024;

/// The first line of a file; null where the file cannot be read.
QString FirstLine(const QString& file)
{
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly))
        return {};
    QByteArray line = input.readLine(kLongestPassword);
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

/// One host may have several farms, by port or by path.
QString DistinctName(const QUrl& server)
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
    , m_preview(&m_services.previewer)
{
}

ClientHost::~ClientHost()
{
    m_session.reset();
    m_runner.reset();
    UseNoServer();
    m_farm.reset();
}

bool ClientHost::Start(QString* error)
{
    if (m_options.server.isEmpty())
        m_options.server
            = ServerUrl(m_services.settings.Value(QStringLiteral("vtr.web/serverurl"), {}).toString());
    const bool embedded = m_options.server.isEmpty();
    // The plugin reads the server's name at sign-in.
    m_services.settings.SetValue(QStringLiteral("vtr.web/currentserver"),
        embedded ? QString::fromLatin1(kEmbeddedServer) : m_options.server.host());
    // The address of an embedded farm changes with each of its starts.
    m_services.renderCore.SetServerName(
        embedded ? QString::fromLatin1(kEmbeddedServer) : DistinctName(m_options.server));

    if (!StartPlugin(error))
        return false;
    m_session = std::make_unique<SessionControl>(
        &m_services.loader, &m_services.communication, &m_services.settings);
    connect(m_session.get(), &SessionControl::SignedIn, this, &ClientHost::ShowClient);
    connect(
        m_session.get(), &SessionControl::SignedIn, &m_services.renderCore, &RenderCoreService::BeginSession);
    connect(
        m_session.get(), &SessionControl::SignedOut, &m_services.renderCore, &RenderCoreService::EndSession);
    connect(m_session.get(), &SessionControl::SignedIn, &m_services.scenes, &SceneIntake::Open);
    connect(m_session.get(), &SessionControl::SignedOut, &m_services.scenes, &SceneIntake::Close);
    m_services.scenes.Take(m_options.scenes);
    if (!SetAccount(embedded, error))
        return false;

    if (embedded)
        StartFarm();
    else
        UseServer(m_options.server);
    return true;
}

void ClientHost::ComeForward(const QStringList& scenes)
{
    m_services.scenes.Take(scenes);
    if (m_session)
        m_session->ComeForward();
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

bool ClientHost::SetAccount(bool embedded, QString* error)
{
    if (!m_options.user.isEmpty()) {
        const QString password = FirstLine(m_options.passwordFile);
        if (password.isEmpty()) {
            *error = QStringLiteral("no password can be read from %1").arg(m_options.passwordFile);
            return false;
        }
        m_session->SetAccount(m_options.user, password);
    } else if (embedded) {
        m_session->SetAccount(kDemoAccount, kDemoAccount);
    }
    return true;
}

void ClientHost::UseServer(const QUrl& url)
{
    m_services.communication.SetServerUrl(url);
    m_services.renderCore.SetServerUrl(url);
    if (!m_sessionBegun)
        BeginSession();
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
    connect(m_farm.get(), &FarmProcess::Lost, this, [this] { UseNoServer(); });
    connect(m_farm.get(), &FarmProcess::GivenUp, this, [this](const QString& reason) {
        qCritical().noquote() << "the embedded farm cannot be kept running:" << reason;
        m_session->ShowFailure(tr("The embedded farm cannot be started."));
    });
    m_farm->Start();
}

void ClientHost::BeginSession()
{
    if (m_options.autoSignIn)
        m_session->SignInAutomatically();
    else
        m_session->ShowSignIn();
}

void ClientHost::ShowClient(const QString& userName)
{
    m_services.configuration.SetUserName(userName);
    QVariant state;
    if (m_client->Show(state, {}) != 0)
        qCritical() << "the main window cannot be shown";
    m_preview.Attach();
}
