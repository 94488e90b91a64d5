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

/// The host's services as they were attached. None is owned; each may be missing or go away.
struct VTServices
{
    ctkPluginContext* pContext = nullptr;
    /// The host's parameters, passed on to every service.
    QVariantMap mapParameters;

    QPointer<VTSettingsInterface> pSettings;
    QPointer<QObject> pLoggerObject;
    QPointer<VTUiLoaderInterface> pUiLoader;
    QPointer<VTMessagboxInterface> pMessageBox;
    QPointer<VTCommunicationInterface> pCommunication;
    QPointer<VTRenderCoreInterface> pRenderCore;
    QPointer<VTConfigurationInterface> pConfiguration;
    QPointer<VTPreviewerInterface> pPreviewer;

    // The statuses that the services' Show returned; some later requests pass them back.
    int nSettingsStatus = 0;
    int nCommunicationStatus = 0;
    int nMessageBoxStatus = 0; // contract: kept but never read, like the three below
    int nRenderCoreStatus = 0;
    int nConfigurationStatus = 0;
    int nPreviewerStatus = 0;

    /// The logger; null when it is gone. Its interface is not a QObject, so a guarded pointer to its object is kept.
    VTLoggerInterface* Logger() const { return qobject_cast<VTLoggerInterface*>(pLoggerObject.data()); }

    /// @return whether both hold the same service objects, whatever their statuses.
    bool SameServices(const VTServices& other) const;

    /// Name of the current skin; empty without a loader.
    QString Skin() const;

    /// Writes to the logger service, if there is one.
    void LogDebug(const QString& strMessage) const;
    void LogCritical(const QString& strMessage) const;
};
