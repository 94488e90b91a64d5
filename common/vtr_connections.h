#pragma once

#include <QObject>

#include <initializer_list>

/// One string-based connection; the texts come from SIGNAL() and SLOT().
struct VTConnection
{
    const QObject* pSender;
    const char* szSignal;
    const QObject* pReceiver;
    const char* szSlot;
};

/// Makes connections, each once however often this is called. A connection that cannot be made is logged by its names.
void VTConnect(std::initializer_list<VTConnection> lstConnection);
