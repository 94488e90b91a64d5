#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QStringList>
#include <QVector>

class QTableWidget;
class QTableWidgetItem;
class VTPageBar;
class VTPrompts;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;
struct VTTimers;

/// Columns of the local tasks' table and what their items keep as data.
namespace VTTaskColumn {
enum {
    Name,      ///< task id
    StartTime, ///< whether the arguments were fetched (bool)
    Status,    ///< stage code
    Progress,
    SceneFile, ///< the task's argument list
    Warn       ///< resource path of the icon shown
};
}

/// The local submission tasks, a page at a time, refreshed in place.
class VTSubmitList : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTCodeTables& codeTables;
        const VTTimers& timers;
        const VTPrompts& prompts;
        VTPageBar& pageBar;
    };

    /// What the needs refer to must outlive this object.
    explicit VTSubmitList(const Dependencies& dependencies);

    static QStringList Headers();

    void BuildPage(int nPage);
    void BuildCurrentPage();

    /// The render core's list has changed: brings the tab to the front.
    void ListChanged();

    /// Brings the rows on the screen up to date and drops those whose task is gone.
    void Refresh();

    /// Deletes tasks in the user's name and shows what is left.
    void Delete(const QStringList& lstTaskId);

    /// Goes on with the task of the current row.
    void ContinueCurrent() const;

    /// Explains a task's failure, or asks whether to go on with one that waits for it.
    void DoubleClicked(int nRow, int nColumn);

private:
    void WriteRow(int nRow, const QString& strTaskId);
    void RefreshRow(int nRow, const QString& strTaskId);
    void RefreshWarning(QTableWidgetItem* pWarn, const QString& strMessage, int nStage, int nError) const;
    QString StageText(int nStage) const;

    /// For each row the place of its task in the list, -1 for one that is gone.
    QVector<int> PlacesOfRows(const QStringList& lstId) const;

    Dependencies m_deps;
    QTableWidget* m_pTable;
    int m_nFirstPlace = 0; ///< where the first row's task was found last
};
