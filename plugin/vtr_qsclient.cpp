#include "plugin/vtr_qsclient.h"

#include "common/vtr_ids.h"
#include "mainwindow/vtr_qsclient_p.h"
#include "vtr_baseappinterface.h"

#include <ctkPluginContext.h>
#include <ctkServiceReference.h>

#include <QEvent>
#include <QTextCodec>

#include <exception>

namespace {

constexpr int Success = 0;
constexpr int Failure = -1;
constexpr int NotInitialised = -3;
constexpr int BadRequest = -4;

VTQsClient* g_pInstance = nullptr;

/// A service to look up by its interface name. `nLine` is reported as the source line (contract).
struct ServiceEntry
{
    const char* szInterface;
    QLatin1String strServiceId;
    int nLine;
};

const ServiceEntry Settings {"VTSettingsInterface", VTIds::Settings, 199};
const ServiceEntry Logger {"VTLoggerInterface", VTIds::Logger, 218};
const ServiceEntry UiLoader {"VTUiLoaderInterface", VTIds::UiLoader, 230};
const ServiceEntry MessageBox {"VTMessagboxInterface", VTIds::MessageBox, 243};
const ServiceEntry Communication {"VTCommunicationInterface", VTIds::Communication, 257};
const ServiceEntry RenderCore {"VTRenderCoreInterface", VTIds::RenderCore, 274};
const ServiceEntry Configuration {"VTConfigurationInterface", VTIds::Configuration, 290};
const ServiceEntry Previewer {"VTPreviewerInterface", VTIds::Previewer, 304};

QString Interface(const ServiceEntry& entry)
{
    return QLatin1String(entry.szInterface);
}

/// Logs through Qt's own message handler that a service is missing or failed. @return false, for the caller to return.
bool ReportInvalid(const ServiceEntry& entry)
{
    const QMessageLogger log("vtr_qsclient", entry.nLine, "AttachPlugins");
    if (entry.strServiceId == VTIds::UiLoader) {
        log.debug("%s", qUtf8Printable(QObject::tr("Module %1 is invalid").arg(entry.strServiceId)));
        return false;
    }
    const QString strText = QObject::tr("[%1] Module %2 is invalid").arg(VTIds::Client, entry.strServiceId);
    log.critical("%s", qUtf8Printable(strText));
    return false;
}

QObject* Find(const VTServices& services, const ServiceEntry& entry)
{
    if (!services.pContext) // Uninitialize was called from inside the attachment
        return nullptr;
    const ctkServiceReference reference = services.pContext->getServiceReference(Interface(entry));
    return reference ? services.pContext->getService(reference) : nullptr;
}

bool Start(VTBaseInterface* pService, const QVariantMap& mapParameters, int& nStatus)
{
    QVariant varResult;
    if (!pService || pService->Initialize(mapParameters) != 0
        || pService->Show(varResult, mapParameters) != 0)
        return false;
    nStatus = varResult.toInt();
    return true;
}

/// Finds, initialises and starts one service and keeps its status.
template <typename Service>
bool Attach(const VTServices& services, const ServiceEntry& entry, QPointer<Service>& pService, int& nStatus)
{
    pService = qobject_cast<Service*>(Find(services, entry));
    return Start(pService, services.mapParameters, nStatus) || ReportInvalid(entry);
}

bool AttachLogger(VTServices& services)
{
    services.pLoggerObject = Find(services, Logger);
    VTLoggerInterface* pLogger = services.Logger();
    const bool bStarted = pLogger && pLogger->Initialize(services.mapParameters) == 0;
    return bStarted || ReportInvalid(Logger);
}

QVector<QPointer<VTBaseAppInterface>> Applications(ctkPluginContext* pContext)
{
    QVector<QPointer<VTBaseAppInterface>> lstApplication;
    const auto lstReference = pContext->getServiceReferences(QStringLiteral("VTBaseAppInterface"));
    for (const ctkServiceReference& reference : lstReference) {
        if (auto* pApplication = qobject_cast<VTBaseAppInterface*>(pContext->getService(reference)))
            lstApplication.append(pApplication);
    }
    return lstApplication;
}

/// Calls the host's applications through `call`; logs any exception instead of passing it on.
template <typename Call>
void CallLogged(Call call)
{
    try {
        call();
    } catch (const std::exception& exception) {
        qWarning("An application of the host failed: %s", exception.what());
    } catch (...) {
        qWarning("An application of the host failed");
    }
}

/// Calls each of the host's applications, even if one of them throws.
template <typename Call>
void CallApplications(ctkPluginContext* pContext, Call call)
{
    const auto lstApplication = Applications(pContext);
    for (const QPointer<VTBaseAppInterface>& pApplication : lstApplication) {
        CallLogged([&] {
            if (pApplication)
                call(pApplication);
        });
    }
}

} // namespace

VTQsClient::VTQsClient()
    : m_pWindow(std::make_unique<VTQsClientPrivate>())
{
    g_pInstance = this;
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("utf-8"));
}

VTQsClient::~VTQsClient()
{
    Uninitialize();
    DeleteWindow();
    // On systems other than Linux the library may be unloaded next, so nothing may be left to the event loop.
    for (const QPointer<QObject>& pObject : qAsConst(m_lstDeferred))
        delete pObject.data();
    if (g_pInstance == this)
        g_pInstance = nullptr;
}

VTQsClient::Call::Call(VTQsClient& client)
    : m_client(client)
{
    ++m_client.m_nCalls;
}

VTQsClient::Call::~Call()
{
    if (--m_client.m_nCalls == 0 && m_client.m_bRetired)
        m_client.deleteLater();
}

void VTQsClient::DeleteWhenIdle()
{
    const Call call(*this);
    m_bRetired = true;
    Uninitialize();
}

bool VTQsClient::event(QEvent* pEvent)
{
    // A deletion that another thread asks for may be carried out by an event loop inside an operation.
    if (pEvent->type() != QEvent::DeferredDelete || !IsBusy())
        return QObject::event(pEvent);
    DeleteWhenIdle();
    return true;
}

VTQsClient* VTQsClient::Instance()
{
    return g_pInstance;
}

VTQsClientPrivate* VTQsClient::Window()
{
    if (!m_pWindow)
        m_pWindow = std::make_unique<VTQsClientPrivate>();
    return m_pWindow.get();
}

void VTQsClient::DeleteWindow()
{
    if (!m_pWindow)
        return;
    std::unique_ptr<VTQsClientPrivate> pWindow = std::move(m_pWindow);
    m_lstDeferred = pWindow->Retire() + m_lstDeferred;
    m_lstDeferred.removeAll(QPointer<QObject>());
    if (pWindow->IsBusy())
        pWindow.release()->DeleteWhenIdle();
}

int VTQsClient::Initialize(const QVariantMap& mapParameters)
{
    if (m_bInitialised)
        return Success;
    if (m_bAttaching)
        return Failure;
    const Call call(*this);
    VTServices& services = Window()->Services();
    services.pContext = mapParameters.value(QStringLiteral("plugin_context")).value<ctkPluginContext*>();
    if (!services.pContext)
        return Failure;
    services.mapParameters = mapParameters;
    m_bAttaching = true;
    m_bInitialised = AttachPlugins(QString()) == Success;
    m_bAttaching = false;
    return m_bInitialised ? Success : Failure;
}

int VTQsClient::AttachPlugins(const QString& strKey)
{
    try {
        m_connections.Clear();
        if (!AttachServices(strKey))
            return Failure;
        AttachApplications();
        m_pWindow->LoadGlobalSettings();
        m_pWindow->BuildInterface();
        return m_pWindow->Services().pContext ? Success : Failure;
    } catch (const std::exception& exception) {
        qCritical("[%s] The services could not be attached: %s", VTIds::Client.data(), exception.what());
    } catch (...) {
        qCritical("[%s] The services could not be attached", VTIds::Client.data());
    }
    return Failure;
}

bool VTQsClient::AttachServices(const QString& strKey)
{
    VTServices& services = m_pWindow->Services();
    const auto Wanted = [&strKey](QLatin1String strId) { return strKey.isEmpty() || strKey == strId; };

    if (Wanted(VTIds::Settings)) {
        if (!Attach(services, Settings, services.pSettings, services.nSettingsStatus))
            return false;
        m_connections.Add(
            {{services.pSettings, SIGNAL(SettingsUpdated()), m_pWindow.get(), SLOT(UpdateSettings())}});
    }
    if (Wanted(VTIds::Logger) && !AttachLogger(services))
        return false;

    int nNoStatus = 0;
    if (!Attach(services, UiLoader, services.pUiLoader, nNoStatus))
        return false;
    m_connections.Add({{services.pUiLoader, SIGNAL(ShowWindow(QString)), this, SLOT(ShowWindow(QString))}});

    return Attach(services, MessageBox, services.pMessageBox, services.nMessageBoxStatus)
        && Attach(services, Communication, services.pCommunication, services.nCommunicationStatus)
        && (!Wanted(VTIds::RenderCore)
            || Attach(services, RenderCore, services.pRenderCore, services.nRenderCoreStatus))
        && Attach(services, Configuration, services.pConfiguration, services.nConfigurationStatus)
        && Attach(services, Previewer, services.pPreviewer, services.nPreviewerStatus);
}

void VTQsClient::AttachApplications()
{
    const VTServices services = m_pWindow->Services();
    if (!services.pContext)
        return;
    QVariant varResult;
    CallApplications(services.pContext, [&](const QPointer<VTBaseAppInterface>& pApplication) {
        pApplication->Initialize(services.mapParameters);
        if (pApplication)
            pApplication->Show(varResult, services.mapParameters);
    });
}

int VTQsClient::Uninitialize()
{
    const Call call(*this);
    if (m_pWindow) {
        const VTServices services = m_pWindow->Services();
        // Released services are not used any more; a later Initialize attaches them again.
        m_connections.Clear();
        m_pWindow->ReleaseServices();
        if (services.pSettings)
            services.pSettings->Hide(QVariant(services.nSettingsStatus));
        if (services.pSettings)
            services.pSettings->Uninitialize();
        if (VTLoggerInterface* pLogger = services.Logger())
            pLogger->Uninitialize();
    }
    Hide(QVariant(m_nWindowState));
    m_bInitialised = false;
    return Success;
}

int VTQsClient::Show(QVariant& varResult, const QVariantMap& /*mapParameters*/)
{
    if (!m_bInitialised)
        return NotInitialised;
    const Call call(*this);
    if (m_nWindowState == NotShown) {
        m_nWindowState = Shown;
        Window()->LoadGlobalSettings();
        if (m_pWindow)
            m_pWindow->ShowForm();
    }
    varResult = m_nWindowState;
    return Success;
}

int VTQsClient::CheckRequest(const QVariant& varRequest) const
{
    if (!m_bInitialised)
        return NotInitialised;
    return varRequest.toInt() == 1 ? Success : BadRequest;
}

int VTQsClient::Hide(const QVariant& varRequest)
{
    if (const int nStatus = CheckRequest(varRequest))
        return nStatus;
    const Call call(*this);
    DeleteWindow();
    m_nWindowState = NotShown;
    return Success;
}

int VTQsClient::Activate(const QVariant& varRequest, const QVariantMap& /*mapParameters*/)
{
    if (const int nStatus = CheckRequest(varRequest))
        return nStatus;
    const Call call(*this);
    if (!m_pWindow)
        return Success;
    const VTServices services = m_pWindow->Services();
    if (services.pContext) {
        CallLogged([&] {
            CallApplications(services.pContext, [&](const QPointer<VTBaseAppInterface>& pApplication) {
                pApplication->Activate(varRequest, services.mapParameters);
            });
        });
    }
    if (m_pWindow)
        m_pWindow->CacheSubmitTasks();
    if (m_pWindow)
        m_pWindow->ShowTrayIcon();
    return Success;
}

int VTQsClient::Close(const QVariant& varRequest)
{
    if (const int nStatus = CheckRequest(varRequest))
        return nStatus;
    const Call call(*this);
    if (m_pWindow)
        m_pWindow->close();
    return Success;
}

void VTQsClient::ShowWindow(QString /*strAppKey*/) { } // contract
