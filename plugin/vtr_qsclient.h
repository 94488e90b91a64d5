#pragma once

#include "common/vtr_connections.h"
#include "vtr_baseinterface.h"

#include <QObject>
#include <QPointer>
#include <QVector>

#include <memory>

class VTQsClientPrivate;

/// The plugin's service object, through which the host drives the whole client.
class VTQsClient final : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    VTQsClient();
    ~VTQsClient() override;

    /// The service object created last; null when there is none.
    static VTQsClient* Instance(); // contract: never called

    /// Attaches the services found through the context under "plugin_context" and builds the window.
    int Initialize(const QVariantMap& mapParameters) override;

    /// Releases the services and deletes the window if it is shown.
    int Uninitialize() override;

    /// Shows the main form and writes the window state (1: shown) into varResult.
    int Show(QVariant& varResult, const QVariantMap& mapParameters) override;

    /// Deletes the window.
    int Hide(const QVariant& varRequest) override;

    /// Passes the call on to the host's other applications and shows the tray icon.
    int Activate(const QVariant& varRequest, const QVariantMap& mapParameters) override;
    int Close(const QVariant& varRequest) override;

    /// Whether an operation is under way: a service or the form has called back from inside it.
    bool IsBusy() const { return m_nCalls > 0; }

    /// Releases the services at once, and leaves this object to the event loop once no operation is under way.
    void DeleteWhenIdle();

    /// Puts the object's deletion off while an operation is under way.
    bool event(QEvent* pEvent) override;

public slots:
    /// Does nothing; the window's slot of the same name acts.
    void ShowWindow(QString strAppKey);

private:
    enum WindowState { NotShown = -1, Shown = 1 };

    /// An operation under way, for as long as this object lives.
    class Call
    {
    public:
        explicit Call(VTQsClient& client);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        VTQsClient& m_client;
    };

    /// @return 0 when a request may be carried out, else the status for the caller to return.
    int CheckRequest(const QVariant& varRequest) const;
    /// @param strKey contract: narrows settings, logger and render core to the one with this service id; always empty.
    int AttachPlugins(const QString& strKey);
    bool AttachServices(const QString& strKey);
    void AttachApplications();
    VTQsClientPrivate* Window();
    void DeleteWindow();

    std::unique_ptr<VTQsClientPrivate> m_pWindow;
    VTConnections m_connections;
    int m_nWindowState = NotShown;
    bool m_bInitialised = false;
    bool m_bAttaching = false;
    int m_nCalls = 0;
    bool m_bRetired = false; ///< is deleted as soon as no operation is under way
    /// Objects of deleted windows that were left to the event loop.
    QVector<QPointer<QObject>> m_lstDeferred;
};
