#include "host/mainform/form_closing.h"

#include "host/mainform/main_form.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QPushButton>
#include <QSystemTrayIcon>

FormClosing::FormClosing(VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
{
    m_minimising.setSingleShot(true);
    m_minimising.setInterval(0);
}

void FormClosing::BeginSession()
{
    QWidget* form = FindMainForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    form->installEventFilter(this);
    // The minimise button and a sign-out both close the form, but only after a click the user wants it back.
    if (const auto* button = form->findChild<QPushButton*>(QStringLiteral("btnSystemMin")))
        connect(button, &QPushButton::released, &m_minimising, qOverload<>(&QTimer::start));
}

bool FormClosing::eventFilter(QObject* watched, QEvent* event)
{
    const bool isByUser = watched == m_form && event->type() == QEvent::Close
        && (m_minimising.isActive() || event->spontaneous());
    if (!isByUser)
        return false;
    if (HasTray()) {
        TellOfTray();
        return false;
    }
    event->ignore();
    m_form->showMinimized();
    return true;
}

bool FormClosing::HasTray() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void FormClosing::TellOfTray()
{
    const QWidget* window = FindMainWindow();
    auto* icon = window ? window->findChild<QSystemTrayIcon*>() : nullptr;
    if (!icon || m_settings->Value(SettingKeys::TrayTold, false).toBool())
        return;
    m_settings->SetValue(SettingKeys::TrayTold, true);
    icon->showMessage(tr("QuillStar is still running"),
        tr("Transfers continue. Double-click this icon to open the window again."));
}
