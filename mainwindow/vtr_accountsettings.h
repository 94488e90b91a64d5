#pragma once

#include <QObject>

struct VTSession;
struct VTServices;

/// The four switches that each account keeps in the settings service.
class VTAccountSettings
{
public:
    /// All must outlive this object.
    VTAccountSettings(const VTServices& services, const VTSession& session)
        : m_services(services)
        , m_session(session)
    {
    }

    /// Reads the switches and connects the render core's finish notice to those who want it: to the slot
    /// PopupFinish(QString) of pWindow and to the configuration service. Does nothing while no user is known.
    void Load(const QObject* pWindow);

    bool AutoDownload() const { return m_bAutoDownload; }
    bool SetArgument() const { return m_bSetArgument; }

private:
    bool Read(const QString& strName) const;

    const VTServices& m_services;
    const VTSession& m_session;
    bool m_bAutoDownload = false;
    bool m_bSetArgument = false;
};
