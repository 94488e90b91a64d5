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

/// Makes each connection once, however often it is called; logs any that cannot be made.
void VTConnect(std::initializer_list<VTConnection> lstConnection);
