#pragma once

#include "vtr_communicationinterface.h"
#include "vtr_configurationinterface.h"
#include "vtr_loggerinterface.h"
#include "vtr_messagboxinterface.h"
#include "vtr_previewerinterface.h"
#include "vtr_rendercoreinterface.h"
#include "vtr_settingsinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QPointer>

/// The sibling services as they were attached; none is owned, each may be missing.
struct VTServices
{
    ctkPluginContext* pContext = nullptr;
    /// The host's parameters, passed on to every sibling.
    QVariantMap mapParameters;

    QPointer<VTSettingsInterface> pSettings;
    QPointer<QObject> pLoggerObject;
    QPointer<VTUiLoaderInterface> pUiLoader;
    QPointer<VTMessagboxInterface> pMessageBox;
    QPointer<VTCommunicationInterface> pCommunication;
    QPointer<VTRenderCoreInterface> pRenderCore;
    QPointer<VTConfigurationInterface> pConfiguration;
    QPointer<VTPreviewerInterface> pPreviewer;

    // What each sibling's Show wrote; passed back with later requests.
    int nSettingsStatus = 0;
    int nMessageBoxStatus = 0;
    int nCommunicationStatus = 0;
    int nRenderCoreStatus = 0;
    int nConfigurationStatus = 0;
    int nPreviewerStatus = 0;

    /// The logger, which is known as an object because its interface is none; null when it is gone.
    VTLoggerInterface* Logger() const { return qobject_cast<VTLoggerInterface*>(pLoggerObject.data()); }

    /// Whether these are the same service objects, whatever their statuses.
    bool SameServices(const VTServices& other) const;

    /// Name of the current skin; empty without a loader.
    QString Skin() const;

    /// Writes to the logger service, if there is one.
    void LogDebug(const QString& strMessage) const;
    void LogCritical(const QString& strMessage) const;
};
