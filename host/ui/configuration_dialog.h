#pragma once

#include "skinned_form.h"

class VTSettingsInterface;

/// The per-account switches, on the form "com.vtr.configuration".
class ConfigurationDialog : public QObject
{
    Q_OBJECT

public:
    /// @param settings must outlive the dialog.
    ConfigurationDialog(UiLoaderService* loader, VTSettingsInterface* settings, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// Shows the switches of a user and waits; they are stored when the user confirms. Nothing happens for an empty name
    /// or while the dialog is open.
    void Run(const QString& userName);

private:
    void Load(const QString& userName);
    void Store(const QString& userName);

    SkinnedForm m_form;
    VTSettingsInterface* m_settings;
};
