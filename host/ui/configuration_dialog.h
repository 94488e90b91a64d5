#pragma once

#include "host/ui/skinned_form.h"

class QLabel;
class QLineEdit;
class QSpinBox;
class VTSettingsInterface;

/// Edits an account's switches, its folder for downloads and how long finished ones stay listed, on the form
/// "com.vtr.configuration".
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

signals:
    /// The user wants finished downloads removed from the list at once, whether or not the dialog is confirmed.
    void ClearFinishedRequested();

private:
    void Accept();
    void Load(const QString& userName);
    void Store(const QString& userName);
    QString ChosenFolder() const;
    void Browse();

    SkinnedForm m_form;
    VTSettingsInterface* m_settings;
    QLineEdit* m_folder;
    QLabel* m_trouble;
    QSpinBox* m_keepDays;
    QString m_storedFolder; // the folder when the dialog was opened
};
