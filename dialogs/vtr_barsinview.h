#pragma once

#include <QObject>

class QTableWidget;
struct VTCodeTables;

/// Gives the rows of a long table their progress bars when they come into view, since a table lays out all of its bars
/// whenever rows are added. A short table gets all its bars at once.
class VTBarsInView : public QObject
{
public:
    /// @param codeTables must outlive this object, and so must the table while SetProgress() is used.
    VTBarsInView(QTableWidget* pTable, int nColumn, const VTCodeTables& codeTables, QObject* pParent);

    /// Sets a row's percentage, which its bar will show.
    void SetProgress(int nRow, int nPercent);

    /// To be called after rows were added; scrolling calls it by itself.
    void ShowBarsInView();

private:
    QTableWidget* m_pTable;
    int m_nColumn;
    const VTCodeTables& m_codeTables;
};
