#pragma once

#include "host/ui/skinned_form.h"

class QLineEdit;
class VTSettingsInterface;

/// The per-account switches and the folder for downloads, on the form "com.vtr.configuration".
class ConfigurationDialog : public QObject
{
    Q_OBJECT

public:
    /// @param settings must outlive the dialog.
    ConfigurationDialog(
        VTUiLoaderInterface* loader, VTSettingsInterface* settings, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// Shows the settings of a user and waits; they are stored when the user confirms. Nothing happens for an empty name
    /// or while the dialog is open.
    void Run(const QString& userName);

private:
    void Load(const QString& userName);
    void Store(const QString& userName);
    QString ChosenFolder() const;
    void Browse();

    SkinnedForm m_form;
    VTSettingsInterface* m_settings;
    QLineEdit* m_folder;
};
