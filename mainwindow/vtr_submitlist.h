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

/// The list of local submission tasks, shown page by page and refreshed in place.
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

    /// Everything in `dependencies` must outlive this object.
    explicit VTSubmitList(const Dependencies& dependencies);

    static QStringList Headers();

    void BuildPage(int nPage);
    void BuildCurrentPage();

    /// Adapts page state, page bar and table after tasks have come or gone, and brings the tab to the front.
    void HandleListChange();

    /// Updates the rows on the screen and removes those whose task has gone.
    void Refresh();

    /// Deletes tasks as the user's own deletion and shows the remaining ones.
    void Delete(const QStringList& lstTaskId);

    /// Tells the render core to go on with the task of the current row.
    void ContinueCurrent() const;

    /// Handles a double click on a warning: explains a failure, or asks whether a task that waits for the user is to go
    /// on.
    void HandleDoubleClick(int nRow, int nColumn);

private:
    void WriteRow(int nRow, const QString& strTaskId);
    void RefreshRow(int nRow, const QString& strTaskId);
    void RefreshWarning(QTableWidgetItem* pWarn, const QString& strMessage, int nStage, int nError) const;
    QString StageText(int nStage) const;

    /// @return for each row the index of its task in the list, or -1 if the task has gone.
    QVector<int> PlacesOfRows(const QStringList& lstId) const;

    Dependencies m_deps;
    QTableWidget* m_pTable;
    int m_nFirstPlace = 0; ///< index in the list at which the first row's task was found last
};
