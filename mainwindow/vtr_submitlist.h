#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVector>

class QTableWidget;
class QTableWidgetItem;
class VTPageBar;
class VTPrompts;
class VTTables;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;
struct VTSession;
struct VTTimers;

/// The list of local submission tasks, shown page by page and refreshed in place.
///
/// The render core may change its list from inside any call that reads it. So a task is read first and its row written
/// afterwards, unless the rows have been built anew meanwhile.
class VTSubmitList : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTSession& session;
        const VTCodeTables& codeTables;
        const VTTimers& timers;
        const VTPrompts& prompts;
        const VTTables& tables;
        VTPageBar& pageBar;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTSubmitList(const Dependencies& dependencies);

    static QStringList Headers();

    /// Shows the current page with no row checked.
    void BuildCurrentPage();

    /// Adapts page state, page bar and table after tasks have come or gone, and brings the tab to the front.
    void HandleListChange();

    /// Updates the rows on the screen and removes those whose task has gone.
    void Refresh();

    /// Makes up for the refills that waited while a menu was open over the table.
    void CatchUp();

    void Retranslate();

    /// Deletes tasks as the user's own deletion and shows the remaining ones.
    void Delete(const QStringList& lstTaskId);

    /// Tells the render core to go on with the task of the current row.
    void ContinueCurrent() const;

    /// Handles a double click on a warning: explains a failure, or asks whether a task that waits for the user is to go
    /// on.
    void HandleDoubleClick(int nRow, int nColumn);

private:
    /// A task as its row needs it, read from the render core.
    struct Task
    {
        QString strId;
        QString strSceneFile;
        QString strStartTime;
        QString strMessage;    ///< English
        QString strUploadText; ///< while it uploads without an error
        QString strWarning;    ///< the icon's file when it has failed
        QVariantList lstArguments;
        bool bArguments = false; ///< whether the arguments have been read
        int nStage = 0;
        int nProgress = 0;
        int nError = 0;

        bool Uploads() const;

        /// Whether a row that shows the other task needs no change to show this one.
        bool LooksLike(const Task& other) const;
    };

    void BuildPage(int nPage, bool bKeepMarks);
    QVector<Task> ReadPage(int nPage);
    Task ReadForNewRow(const QString& strTaskId) const;
    Task ReadForRefresh(const QString& strTaskId, bool bArguments) const;
    void WriteRow(int nRow, const Task& task);
    void RefreshRow(int nRow, const Task& task);
    void RefreshWarning(QTableWidgetItem* pWarn, const Task& task) const;
    QString StageText(int nStage) const;

    /// @return for each row the index of its task in the list, or -1 if the task has gone.
    QVector<int> PlacesOfRows(const QStringList& lstId) const;

    Dependencies m_deps;
    QTableWidget* m_pTable;
    QHash<QString, Task>
        m_mapShown;        ///< the tasks as the rows show them, by id; a row without an entry must be written
    int m_nFirstPlace = 0; ///< index in the list at which the first row's task was found last
    int m_nBuild = 0;      ///< changes whenever the rows are built anew
    bool m_bBuildHeld = false;
};
