#pragma once

class QWidget;
struct VTServices;

/// Lets files that are dropped by programs of lower rights reach the window, where the system filters such messages.
void VTAllowFileDrops(QWidget* pWindow, const VTServices& services);
