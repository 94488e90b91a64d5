#pragma once

#include "host/services/service_base.h"
#include "host/ui/form_layout.h"
#include "host/ui/languages.h"
#include "host/ui/tray_menu.h"
#include "vtr_settingsinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QHash>
#include <QPointer>

#include <memory>

/// Forms, skins, languages, the tray menu and the switching between windows.
///
/// Forms and the built-in skins are resources; further skins are found as "skins/*.rcc" and languages as
/// "languages/vtr_<locale>.qm" next to the executable. The user's choice is kept under "vtr.ui/skin" and
/// "vtr.ui/language".
class UiLoaderService final : public ServiceBase<VTUiLoaderInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTUiLoaderInterface)

public:
    /// @param settings may be null, then nothing is remembered; must outlive the loader.
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
    /// @param name an entry of GetSkins(); any other is ignored.
    void SetSkin(const QString& name);

    /// Makes a window known to OpenWindow; the caller keeps it.
    void RegisterWindow(const QString& key, QWidget* window);

private:
    void Remember(const QString& key, const QString& value);
    QString Remembered(const QString& key, const QString& fallback) const;
    void TakeRememberedLanguage();
    bool InstallLanguage(const QString& file);
    void ListChoices();
    void PrepareMainForm(QWidget* form);

    QPointer<VTSettingsInterface> m_settings;
    QString m_skin;
    QString m_languageFile; ///< empty when no language file is installed
    Translations m_translations;
    TrayMenu m_trayMenu;
    QHash<QString, QPointer<QWidget>> m_windows;
    QHash<QString, FormLayout> m_layouts; ///< by layout file
};
