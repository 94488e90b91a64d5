#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class VTSettingsInterface;

/// Places the main form when it is shown for the first time: where it was when the client ended, otherwise in the middle
/// of the screen, and always within a screen. The form owns it.
class WindowPlace : public QObject
{
    Q_OBJECT

public:
    /// @param settings keep size, place and whether the form is maximised; null to forget them.
    WindowPlace(QWidget* form, VTSettingsInterface* settings);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Place();
    void HandleNewPlace();
    void Remember();

    QWidget* m_form;
    QPointer<VTSettingsInterface> m_settings;
    QPoint m_wanted; // the wanted place, until the window system has placed the form
    enum { NotShown, Settling, Settled } m_state = NotShown;
    QTimer m_settling; // runs out when the form has kept its geometry for a while
};
