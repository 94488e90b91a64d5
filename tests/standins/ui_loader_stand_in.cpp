#include "tests/standins/ui_loader_stand_in.h"

#include "tests/standins/form_roster.h"

#include <QFileInfo>

UiLoaderStandIn::UiLoaderStandIn(Journal& shared)
    : StandIn(shared)
{
    skinMenu.setTitle("Skins"_s);
    languageMenu.setTitle("Languages"_s);
}

QWidget* UiLoaderStandIn::LoadUi(const QString& key, QWidget* parent)
{
    loadedKeys.append(parent ? QString(key + " with parent"_s) : key);
    QWidget* form = missingForms.contains(key) ? nullptr : NewForm(key, leftOut);
    m_forms.insert(key, form);
    return form;
}

void UiLoaderStandIn::SetLanguage(const QString& path)
{
    journal.Write(QString("SetLanguage "_s + path));
    language = QFileInfo(path).fileName();
    emit LanguageChanged(language);
}

QMenu* UiLoaderStandIn::GetMenu(const QString& menu, const QString& subMenu)
{
    if (menu != "menuTray"_s)
        return nullptr;
    if (subMenu.isEmpty())
        return &trayMenu;
    if (subMenu == "meuSkin"_s)
        return &skinMenu;
    return subMenu == "meuLanguage"_s ? &languageMenu : nullptr;
}

void UiLoaderStandIn::LayoutForm(QWidget* form, const QString& file)
{
    if (form == Form("com.vtr.qsclient"_s))
        layouts.append(file);
}
