#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QString>
#include <QStringList>

class QMenu;
class QWidget;

/// The host's forms, skins, languages and menus, and the windows registered with it.
class VTUiLoaderInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    /// Builds the form registered under a key. The caller owns it unless a parent is given.
    /// @return null when there is no such form.
    virtual QWidget* LoadUi(const QString& strKey, QWidget* pParent) = 0;

    /// Name of the current skin, which is the name of its resource folder.
    virtual QString GetSkin() = 0;

    /// Bare file name of the current language file, for example "vtr_en.qm".
    virtual QString GetLanguage() = 0;

    /// Paths of the installed language files, in the loader's order.
    virtual QStringList GetLanguages() = 0;

    /// @param strLanguage an entry of GetLanguages(), as listed.
    virtual void SetLanguage(const QString& strLanguage) = 0;

    /// Shows another registered window, for example "com.vtr.authclient".
    virtual void OpenWindow(const QString& strKey) = 0;

    /// @param strSubMenu a sub-menu of strMenu; empty for the menu itself.
    /// @return the menu, which the loader owns; null when no menu has that name.
    virtual QMenu* GetMenu(const QString& strMenu, const QString& strSubMenu) = 0;

    /// Reads the skin's settings from an INI file.
    virtual void LoadSkinSettings(const QString& strIniFile) = 0;

    /// Places the form's children for its current size, as the skin's INI file says.
    virtual void LayoutForm(QWidget* pForm, const QString& strIniFile) = 0;

signals:
    void SkinChanged(QString strSkin);
    void LanguageChanged(QString strLanguage);
    /// Asks the window registered under strKey to show itself.
    void ShowWindow(QString strKey);
};

Q_DECLARE_INTERFACE(VTUiLoaderInterface, "com.vtr.uiloader")
