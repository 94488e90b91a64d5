#pragma once

#include "host/services/service_base.h"
#include "host/ui/form_layout.h"
#include "host/ui/languages.h"
#include "host/ui/tray_menu.h"
#include "vtr_settingsinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QHash>
#include <QPointer>

/// Loads forms, switches skins and languages, and owns the tray menu.
///
/// Forms and the built-in skins are resources. Additional skins are files "skins/*.rcc" and languages are files
/// "languages/vtr_<locale>.qm" next to the executable. The settings "vtr.ui/skin" and "vtr.ui/language" keep the user's
/// choice.
class UiLoaderService final : public ServiceBase<VTUiLoaderInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTUiLoaderInterface)

public:
    /// @param settings must outlive the loader; null if the choices should not be saved.
    explicit UiLoaderService(VTSettingsInterface* settings, QObject* parent = nullptr);
    ~UiLoaderService() override;

    QWidget* LoadUi(const QString& key, QWidget* parent) override;
    QString GetSkin() override { return m_skin; }
    QString GetLanguage() override;
    QStringList GetLanguages() override;
    void SetLanguage(const QString& file) override;
    void OpenWindow(const QString& key) override;
    QMenu* GetMenu(const QString& menu, const QString& subMenu) override;
    void LoadSkinSettings(const QString& iniFile) override;
    void LayoutForm(QWidget* form, const QString& iniFile) override;

    QStringList GetSkins() const;

    /// @param name an entry of GetSkins(); other names are ignored.
    void SetSkin(const QString& name);

    /// Lets OpenWindow show this window. The caller keeps ownership.
    void RegisterWindow(const QString& key, QWidget* window);

private:
    void Remember(const QString& key, const QString& value);
    QString Remembered(const QString& key, const QString& fallback) const;
    void RestoreLanguage();
    bool InstallLanguage(const QString& file);
    void ListChoices();
    void PrepareMainForm(QWidget* form);
    void GiveMenu(const QWidget* form, const char* buttonName, const char* menuName);

    QPointer<VTSettingsInterface> m_settings;
    QString m_skin;
    QString m_languageFile; // empty when no language file is installed
    Translations m_translations;
    TrayMenu m_trayMenu;
    QHash<QString, QPointer<QWidget>> m_windows;
    QHash<QString, FormLayout> m_layouts; // by layout file
};
