#pragma once

#include "host/ui/skinned_form.h"

class QLineEdit;
class VTSettingsInterface;

/// Edits an account's switches and its folder for downloads, on the form "com.vtr.configuration".
class ConfigurationDialog : public QObject
{
    Q_OBJECT

public:
    /// @param settings must outlive the dialog.
    ConfigurationDialog(
        VTUiLoaderInterface* loader, VTSettingsInterface* settings, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// Shows the settings of a user, waits, and stores them if the user confirms. Does nothing for an empty name or while
    /// the dialog is open.
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
