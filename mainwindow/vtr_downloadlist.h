#pragma once

#include "mainwindow/vtr_mapcursor.h"

#include <QCoreApplication>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

class QTableWidget;
class VTPageBar;
class VTTables;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;
struct VTTimers;

/// The list of downloads, shown page by page from the render core's live map and refreshed in place.
class VTDownloadList : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTCodeTables& codeTables;
        const VTTimers& timers;
        const VTTables& tables;
        VTPageBar& pageBar;
    };

    /// Asks the render core for its map. Everything in `dependencies` must outlive this object.
    explicit VTDownloadList(const Dependencies& dependencies);

    static QStringList Headers();

    /// Shows the current page with no row checked.
    void BuildCurrentPage();

    /// Adapts page state, page bar and table after downloads have come or gone.
    void HandleListChange();

    /// Updates progress and state of the rows on the screen.
    void Refresh();

    /// Makes up for the refills that waited while a menu was open over the table.
    void CatchUp();

    void Retranslate();

    /// Deletes downloads and shows the remaining ones.
    void Delete(const QStringList& lstTaskId);

    /// Starts the checked downloads again.
    void RedownloadChecked();

    /// Shows the file of the current row in the system's file manager.
    void RevealCurrentFile() const;

private:
    /// The live map; null when the render core is gone or has none.
    const QVariantMap* Tasks() const;
    void BuildPage(int nPage, bool bKeepMarks);
    void AddRows(int nFirst);
    /// The task with this index in the order of the map, or the end.
    QVariantMap::const_iterator TaskAt(const QVariantMap& mapTasks, int nIndex);
    void WriteRow(int nRow, const QString& strTaskId, const QVariantMap& mapTask);
    QString StateText(int nState) const;
    void WriteState(int nRow, const QVariantMap& mapTask);

    Dependencies m_deps;
    QTableWidget* m_pTable;
    const QVariantMap* m_pTasks = nullptr;
    VTMapCursor m_place;
    QVector<QVariant>
        m_lstShown; ///< the tasks as the rows show them; invalid where a row must be written in any case
    bool m_bBuildHeld = false;
};
