#pragma once

#include "tests/standins/stand_in.h"
#include "vtr_uiloaderinterface.h"

#include <QHash>
#include <QMenu>
#include <QPointer>
#include <QWidget>

/// Loads the host's forms with some of their properties changed, and records the client's calls.
class UiLoaderStandIn : public StandIn<VTUiLoaderInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTUiLoaderInterface)

public:
    QWidget* LoadUi(const QString& key, QWidget* parent) override;
    QString GetSkin() override { return skin; }
    QString GetLanguage() override { return language; }
    QStringList GetLanguages() override { return {"/lang/vtr_de.qm"_s, "/lang/vtr_en.qm"_s}; }
    void SetLanguage(const QString& path) override;
    void OpenWindow(const QString& key) override { journal.append(QString("OpenWindow "_s + key)); }
    QMenu* GetMenu(const QString& menu, const QString& subMenu) override
    {
        return m_menus.value(menu + subMenu);
    }
    void LoadSkinSettings(const QString& file) override { skinSettings.append(file); }
    void LayoutForm(QWidget* form, const QString& file) override;

    /// The form last built for a key; owned by the client, null once it is gone.
    QWidget* Form(const QString& key) const { return m_forms.value(key); }

    QString skin = "teal"_s;
    QString language = "vtr_en.qm"_s;
    QStringList leftOut;      ///< names of widgets that the forms lack; "*" stands for all
    QStringList missingForms; ///< keys that have no form
    QStringList loadedKeys;
    QStringList skinSettings;
    QStringList layouts; ///< layout files used on the main form
    QMenu trayMenu;
    QMenu skinMenu;
    QMenu languageMenu;

private:
    QHash<QString, QPointer<QWidget>> m_forms;
    const QHash<QString, QMenu*> m_menus {{"menuTray"_s, &trayMenu}, {"menuTraymeuSkin"_s, &skinMenu},
        {"menuTraymeuLanguage"_s, &languageMenu}};
};
