#pragma once

class QWidget;
class VTConnections;
struct VTConcerns;
struct VTTimers;

/// Makes the window's connections: main form, services and dialogs, then tray and menus.
void VTWireWindow(
    VTConnections& wiring, QWidget* pWindow, const VTConcerns& concerns, const VTTimers& timers);
