#pragma once

#include <QMenu>
#include <QObject>

/// The tray icon's menu with its sub-menus of skins and languages.
class TrayMenu : public QObject
{
    Q_OBJECT

public:
    explicit TrayMenu(QObject* parent = nullptr);

    /// @param menu "menuTray".
    /// @param subMenu "meuSkin" or "meuLanguage"; empty for the menu itself.
    /// @return null for other names.
    QMenu* Find(const QString& menu, const QString& subMenu);

    void ListSkins(const QStringList& names, const QString& current);

    /// @param files as returned by Languages::Files.
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
