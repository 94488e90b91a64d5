#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

class VTAccountSettings;
class VTTables;
struct VTMainForm;

/// The context menus of the three tables. Each opens at the cursor, at most once for each press on a row. While it is
/// open, the rows of its table stay as they are.
class VTContextMenus
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow parent of the menus, which take their style from it; all must outlive this object.
    VTContextMenus(
        QWidget* pWindow, const VTMainForm& form, const VTAccountSettings& settings, VTTables& tables);

    /// Runs the menu of a tab's table, if there is something that it can act on, until it is closed.
    void Run(int nTab);

    /// Closes the menu that is open.
    void Close();

    void Retranslate() const;

private:
    bool CanRunSubmitMenu(int nRow) const;
    /// @return whether the arguments of a local task's row can be edited.
    bool HasArguments(int nRow) const;
    void OfferArguments(bool bOffer);
    void Run(QMenu& menu, int nTab);

    const VTMainForm& m_form;
    const VTAccountSettings& m_settings;
    VTTables& m_tables;
    QMenu m_jobMenu;
    QMenu m_submitMenu;
    QMenu m_downloadMenu;

public:
    // The entries, each owned by its menu.
    QAction* const pDownload;
    QAction* const pSetParent;
    QAction* const pSubmit;
    QAction* const pDeleteTasks;
    QAction* const pSetArgument; ///< in the menu only where arguments can be edited
    QAction* const pOpenFolder;
    QAction* const pRedownload;
};
