#pragma once

class QWidget;
struct VTSiblings;
struct VTTimers;
struct VTWindowParts;

/// Makes the window's connections: form, services and dialogs, then tray and menus.
void VTWireWindow(
    QWidget* pWindow, const VTWindowParts& parts, const VTSiblings& siblings, const VTTimers& timers);
