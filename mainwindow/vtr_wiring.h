#pragma once

class QWidget;
struct VTServices;
struct VTTimers;
struct VTConcerns;

/// Makes the window's connections: main form, services and dialogs, then tray and menus. Each is made once.
void VTWireWindow(
    QWidget* pWindow, const VTConcerns& concerns, const VTServices& services, const VTTimers& timers);
