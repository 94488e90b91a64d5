#pragma once

class QWidget;
struct VTServices;

/// Lets the window accept files dropped by programs with fewer rights, on systems that filter such messages.
void VTAllowFileDrops(QWidget* pWindow, const VTServices& services);
