#include "mainwindow/vtr_dropfilter.h"

#include "common/vtr_services.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>
#include <QWidget>

void VTAllowFileDrops(QWidget* pWindow, const VTServices& services)
{
    constexpr UINT MessageDropFiles = 563;
    constexpr DWORD Allow = 1;
    using ChangeFilter = BOOL(WINAPI*)(HWND, UINT, DWORD, void*);

    const HMODULE hUser32 = GetModuleHandleW(L"USER32");
    const auto changeFilter = hUser32
        ? reinterpret_cast<ChangeFilter>(GetProcAddress(hUser32, "ChangeWindowMessageFilterEx"))
        : nullptr;
    if (!changeFilter)
        return;
    const bool bAllowed
        = changeFilter(reinterpret_cast<HWND>(pWindow->winId()), MessageDropFiles, Allow, nullptr);
    services.LogDebug(
        bAllowed ? QStringLiteral("WM_DROPFILES SUCCESS") : QStringLiteral("WM_DROPFILES ERROR"));
}
#else
void VTAllowFileDrops(QWidget* /*pWindow*/, const VTServices& /*services*/) { }
#endif
