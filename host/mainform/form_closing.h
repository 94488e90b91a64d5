#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class VTSettingsInterface;

/// Keeps the main form within reach when the user closes it: without a system tray the form is minimised instead, and
/// with one a balloon says, once, where the form went.
class FormClosing : public QObject
{
    Q_OBJECT

public:
    /// @param settings must outlive this object.
    explicit FormClosing(VTSettingsInterface* settings, QObject* parent = nullptr);

    /// Watches the main form. Call it whenever the form is shown for a new session, because it may be a new one.
    void BeginSession();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    virtual bool HasTray() const;

private:
    void TellOfTray();

    VTSettingsInterface* m_settings;
    QPointer<QWidget> m_form;
    QTimer m_minimising; // active while the minimise button is being clicked
};
