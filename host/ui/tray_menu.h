#pragma once

#include <QMenu>
#include <QObject>

/// The tray icon's menu with its sub-menus of skins and languages.
class TrayMenu : public QObject
{
    Q_OBJECT

public:
    explicit TrayMenu(QObject* parent = nullptr);

    /// @param menu is "menuTray".
    /// @param subMenu is "meuSkin" or "meuLanguage"; empty for the menu itself.
    /// @return null for other names.
    QMenu* Find(const QString& menu, const QString& subMenu);

    void ListSkins(const QStringList& names, const QString& current);

    /// @param files are those that Languages::Files returns.
    void ListLanguages(const QStringList& files, const QString& current);

    void SetStyleSheet(const QString& sheet) { m_menu.setStyleSheet(sheet); }
    void Retranslate();

signals:
    void SkinChosen(const QString& name);
    void LanguageChosen(const QString& file);

private:
    QMenu m_menu;
    QMenu* m_skins;
    QMenu* m_languages;
};
