#pragma once

#include "common/vtr_connections.h"

#include <QString>

class QObject;
struct VTServices;
struct VTSession;

/// The four switches that each account keeps in the settings service.
class VTAccountSettings
{
public:
    /// @param pWindow has the slot PopupFinish(QString); all must outlive this object.
    VTAccountSettings(const QObject* pWindow, const VTServices& services, const VTSession& session)
        : m_pWindow(pWindow)
        , m_services(services)
        , m_session(session)
    {
    }

    /// Reads the switches and connects or disconnects balloon and sound for finished downloads accordingly. Does
    /// nothing while no user is known.
    void Load();

    /// Disconnects balloon and sound until the switches are read again.
    void Disconnect();

    /// Whether finished jobs are downloaded automatically.
    bool AutoDownload() const { return m_bAutoDownload; }

    /// Whether the menu of the local tasks offers to edit render arguments.
    bool OffersArguments() const { return m_bOffersArguments; }

private:
    bool Read(const QString& strName) const;

    const QObject* m_pWindow;
    const VTServices& m_services;
    const VTSession& m_session;
    VTConnections m_balloon;
    VTConnections m_sound;
    bool m_bAutoDownload = false;
    bool m_bOffersArguments = false;
};
