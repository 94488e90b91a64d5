#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QObject>

class VTTables;
struct VTMainForm;

/// The context menus of the three tables. Each opens at the cursor, once a press on a cell.
class VTContextMenus : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow parent of the menus, for their style; all must outlive this object.
    VTContextMenus(QWidget* pWindow, const VTMainForm& form, VTTables& tables);

    void RunJobMenu();
    void RunDownloadMenu();

    /// @param bArgumentsWanted the account's switch for editing arguments.
    void RunSubmitMenu(bool bArgumentsWanted);

    void Retranslate() const;

private:
    /// Whether the arguments of a local task's row can be edited.
    bool HasArguments(int nRow) const;
    void Run(QMenu& menu);

    const VTMainForm& m_form;
    VTTables& m_tables;
    QMenu m_jobMenu;
    QMenu m_submitMenu;
    QMenu m_downloadMenu;

public:
    // The entries; each belongs to its menu.
    QAction* const pDownload;
    QAction* const pSetParent;
    QAction* const pSubmit;
    QAction* const pDeleteTasks;
    QAction* const pSetArgument; ///< in its menu only where arguments can be edited
    QAction* const pOpenFolder;
    QAction* const pRedownload;
};
