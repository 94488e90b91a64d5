#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QObject>

class VTAccountSettings;
class VTTables;
struct VTMainForm;

/// The context menus of the three tables. Each opens at the cursor, at most once per press on a row.
class VTContextMenus : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow parent of the menus, which take their style from it; all must outlive this object.
    VTContextMenus(
        QWidget* pWindow, const VTMainForm& form, const VTAccountSettings& settings, VTTables& tables);

    void RunJobMenu();
    void RunDownloadMenu();
    void RunSubmitMenu();

    void Retranslate() const;

private:
    /// @return whether the arguments of a local task's row can be edited.
    bool HasArguments(int nRow) const;
    void Run(QMenu& menu);

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
