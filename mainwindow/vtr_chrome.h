#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QSize>
#include <QString>

class QEvent;
class QWidget;
class VTPrompts;
struct VTMainForm;
struct VTServices;

/// Shows, sizes and lays out the main form, and quits.
class VTChrome : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow emits windowSizeChanged(); all must outlive this object.
    VTChrome(QWidget* pWindow, const VTMainForm& form, const VTServices& services, const VTPrompts& prompts);

    /// Shows the main form with the skin's icon.
    void ShowForm() const;

    /// Brings the main form to the front when strKey names it.
    void ShowOnRequest(const QString& strKey) const;

    // After both, the window emits windowSizeChanged() when the form has its new size.
    void Maximize();
    void Restore();

    /// Lays the main form out when the event resizes it. @return whether the event is consumed.
    bool HandleEvent(const QObject* pObject, const QEvent* pEvent) const;

    /// Asks, then tells the render core that the session's local tasks end (they are kept), and ends the application.
    void AskToQuit();

private:
    void AnnounceNewSize() const;

    QWidget* m_pWindow;
    const VTMainForm& m_form;
    const VTServices& m_services;
    const VTPrompts& m_prompts;
    /// Difference between the screen and the form in normal size.
    QSize m_sizeDelta {0, 0};
};
