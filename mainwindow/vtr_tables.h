#pragma once

#include <QStringList>

struct VTMainForm;
class QTableWidget;

/// What the three tables have in common: check boxes, identifiers and the row that was pressed last.
class VTTables
{
public:
    /// @param form must outlive this object.
    explicit VTTables(const VTMainForm& form);

    /// Identifiers (column 0) of a tab's checked rows, top to bottom; empty for a tab without a table.
    QStringList CheckedIds(int nTab) const;

    /// Identifiers of all rows, top to bottom.
    static QStringList AllIds(const QTableWidget* pTable);
    static QString IdAt(const QTableWidget* pTable, int nRow);

    /// A press on a row of the current tab: the right button checks it, any other toggles it.
    void Press(int nRow);

    /// Row of the last press, -1 when there was none since the last menu.
    int PressedRow() const { return m_nPressedRow; }

    /// A context menu opens only once a press.
    void ForgetPress() { m_nPressedRow = -1; }

    static void SetCheckStates(const QTableWidget* pTable, Qt::CheckState state);
    static void UncheckRows(const QTableWidget* pTable) { SetCheckStates(pTable, Qt::Unchecked); }

    /// Gives every row of the current tab a check state.
    void CheckAll(int nState) const;

    /// Unchecks the select-all box, and with it every row of the current tab.
    void UncheckAll() const;

    /// Six columns, captions apart.
    void SetUpColumns() const;

    /// Spreads a tab's columns evenly over the table's width.
    void SpreadColumns(int nTab) const;

private:
    const VTMainForm& m_form;
    int m_nPressedRow = -1;
};
