#pragma once

#include <QString>

class QWidget;
class VTContextMenus;
class VTDownloadList;
class VTGroup;
class VTJobList;
class VTSearch;
class VTSetArgument;
class VTSetParent;
class VTSubmitList;
class VTTray;
struct VTMainForm;
struct VTServices;

/// Skin and language of everything that the user sees: main form, menus, tray icon and dialogs.
class VTAppearance
{
public:
    struct Dependencies
    {
        QWidget* pWindow; ///< parent of the menus, which take their style from it
        const VTMainForm& form;
        const VTServices& services;
        const VTTray& tray;
        const VTContextMenus& menus;
        const VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
        VTSetArgument& setArgument;
        VTSetParent& setParent;
        VTSearch& search;
        VTGroup& group;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTAppearance(const Dependencies& dependencies);

    void ChangeSkin(const QString& strSkin) const;

    /// Translates everything into the loader's current language.
    void ChangeLanguage();

    /// Switches to the first installed language that is not the current one.
    void ToggleLanguage() const;

private:
    void RestyleLanguageButton() const;

    Dependencies m_deps;
    QString m_strLanguage; ///< as the loader keeps it: a file name, perhaps with its path
};
