#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QSize>
#include <QString>

class QWidget;
class VTPrompts;
struct VTMainForm;
struct VTServices;

/// What surrounds the content of the main form: size, layout, the current language and the way out.
class VTChrome : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// All must outlive this object.
    VTChrome(const VTMainForm& form, const VTServices& services, const VTPrompts& prompts);

    /// Shows the main form with the skin's icon.
    void ShowForm() const;
    void Restyle(const QString& strSkin) const;

    void Maximize();
    void Restore();

    /// Places the form's children for its present size.
    void LayoutForm() const;

    /// Asks, then hands all local tasks back to the render core and ends the application.
    void AskToQuit();

    /// Reads the loader's current language and gives the language button its image.
    void UpdateLanguage();

    /// Switches to the first installed language that is not the current one.
    void ToggleLanguage() const;

private:
    const VTMainForm& m_form;
    const VTServices& m_services;
    const VTPrompts& m_prompts;
    /// How much larger the screen is than the form in normal size.
    QSize m_sizeDelta {0, 0};
    QString m_strLanguage;
};
