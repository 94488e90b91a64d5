#pragma once

#include <QMetaObject>
#include <QObject>
#include <QVector>

#include <initializer_list>

/// One string-based connection; the texts come from SIGNAL() and SLOT().
struct VTConnection
{
    const QObject* pSender;
    const char* szSignal;
    const QObject* pReceiver;
    const char* szSlot;
};

/// Connections that end together: when this object is cleared or destroyed.
class VTConnections
{
public:
    VTConnections() = default;
    ~VTConnections() { Clear(); }
    VTConnections(const VTConnections&) = delete;
    VTConnections& operator=(const VTConnections&) = delete;

    /// Makes the connections; logs any that cannot be made.
    void Add(std::initializer_list<VTConnection> lstConnection);
    void Clear();

private:
    QVector<QMetaObject::Connection> m_lstConnection;
};
