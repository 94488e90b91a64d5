#pragma once

#include "common/vtr_jobrow.h"

class QProgressBar;
class QTableWidget;
class QTableWidgetItem;

/// How rows are written into the client's tables. Everything here changes only what differs, so that writing the same
/// row again costs nothing and paints nothing.
namespace VTTableCells {

/// An item's data and plain-text tool tip, centred; with bCheckable an unchecked check box.
void SetAttributes(QTableWidgetItem* pItem, const QVariant& varData, const QString& strTip, bool bCheckable);

/// The item of a cell, made when there is none yet. The table owns it.
QTableWidgetItem* ItemAt(QTableWidget* pTable, int nRow, int nColumn);

/// What a cell keeps besides its text; invalid when there is no such cell.
QVariant Data(const QTableWidget* pTable, int nRow, int nColumn);

/// The rows whose first cell is checked, top to bottom.
QList<int> CheckedRows(const QTableWidget* pTable);

/// Text and attributes of one cell.
void Write(QTableWidget* pTable, int nRow, int nColumn, const VTCell& cell);

/// A bar of 0 to 100 percent with visible text. The caller owns it until a table takes it.
QProgressBar* NewProgressBar(int nPercent, const VTCodeTables& codeTables);

/// Sets a bar to a percentage; the style sheet is parsed only when the band changes. Out of range shows an empty bar.
void SetProgress(QProgressBar* pBar, int nPercent, const QString& strStyle);

/// Brings the bar of a cell, made when there is none yet, to a percentage.
void WriteProgress(QTableWidget* pTable, int nRow, int nColumn, int nPercent, const VTCodeTables& codeTables);

/// All cells of a job's row.
void WriteJob(QTableWidget* pTable, int nRow, const VTJobRecord& job, const VTCodeTables& codeTables);

/// Removes all rows.
void Clear(QTableWidget* pTable);

} // namespace VTTableCells
