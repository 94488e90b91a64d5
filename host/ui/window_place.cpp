#include "host/ui/window_place.h"

#include "host/settings/setting_keys.h"
#include "host/ui/frameless_window.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>

namespace {

constexpr int SettlingTime = 300; // ms

/// @return the form's usual size in the middle of the screen that it would appear on.
QRect Centred(const QWidget* form)
{
    QRect place(QPoint(), form->size());
    place.moveCenter(form->screen()->availableGeometry().center());
    return place;
}

/// @return the rectangle moved, and made smaller if need be, so that it fits the screen that it lies on.
QRect OnScreen(const QRect& place, const QScreen* otherwise)
{
    const QScreen* found = QGuiApplication::screenAt(place.center());
    const QRect bounds = (found ? found : otherwise)->availableGeometry();
    return KeptWithin(QRect(place.topLeft(), place.size().boundedTo(bounds.size())), bounds);
}

} // namespace

WindowPlace::WindowPlace(QWidget* form, VTSettingsInterface* settings)
    : QObject(form)
    , m_form(form)
    , m_settings(settings)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(SettlingTime);
    connect(&m_settling, &QTimer::timeout, this, &WindowPlace::HandleNewPlace);
    form->installEventFilter(this);
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_form)
        return false;
    switch (event->type()) {
    case QEvent::Show:
        if (m_state == NotShown)
            Place();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        if (m_state != NotShown)
            m_settling.start();
        break;
    case QEvent::Hide:
        if (m_settling.isActive() && m_state == Settled)
            Remember();
        break;
    default:
        break;
    }
    return false;
}

void WindowPlace::Place()
{
    // The window consumes the form's resize events. A filter that is installed anew sees them first.
    m_form->installEventFilter(this);
    const QRect stored = m_settings ? m_settings->Value(SettingKeys::WindowPlace, {}).toRect() : QRect();
    const QRect place = OnScreen(stored.isValid() ? stored : Centred(m_form), m_form->screen());
    m_form->setGeometry(QRect(place.topLeft(), place.size().expandedTo(m_form->minimumSize())));
    m_wanted = m_form->pos();
    m_state = Settling;
    m_settling.start();
    if (!m_settings || !m_settings->Value(SettingKeys::WindowMaximized, false).toBool())
        return;
    // The button's slot also updates everything that depends on the size. Queued, because the form's first events may
    // delete it.
    if (auto* maximize = m_form->findChild<QPushButton*>(QStringLiteral("btnSystemMaxnormal")))
        QMetaObject::invokeMethod(maximize, "click", Qt::QueuedConnection);
}

void WindowPlace::HandleNewPlace()
{
    if (m_state == Settled) {
        Remember();
        return;
    }
    m_state = Settled;
    // With several window managers, a report sent before the form's first move arrives after it, and Qt then believes
    // that the form is at 0,0. Moving it again makes the window manager report its true place.
    const bool isDragged = QGuiApplication::mouseButtons() != Qt::NoButton;
    if (!m_form->isMaximized() && !isDragged)
        m_form->move(m_wanted);
}

void WindowPlace::Remember()
{
    if (!m_settings || m_form->isMinimized())
        return;
    m_settings->SetValue(SettingKeys::WindowMaximized, m_form->isMaximized());
    if (!m_form->isMaximized())
        m_settings->SetValue(SettingKeys::WindowPlace, m_form->geometry());
}
