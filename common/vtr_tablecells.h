#pragma once

#include "common/vtr_jobrow.h"

#include <QVariant>

class QProgressBar;
class QTableWidget;
class QTableWidgetItem;
struct VTCodeTables;

/// Writes the cells of the client's tables. Texts, bars and style sheets are set only where they differ, so writing the
/// same row again neither parses a style sheet nor repaints.
namespace VTTableCells {

/// Sets an item's data and plain-text tool tip and centres it; with bCheckable it gets an unchecked check box. A null
/// item is ignored.
void SetAttributes(QTableWidgetItem* pItem, const QVariant& varData, const QString& strTip, bool bCheckable);

/// The item of a cell, created if missing. The table owns it.
QTableWidgetItem* ItemAt(QTableWidget* pTable, int nRow, int nColumn);

/// The data (`Qt::UserRole`) of a cell; invalid when there is no such cell.
QVariant Data(const QTableWidget* pTable, int nRow, int nColumn);

/// Writes text, attributes and check box of one cell.
void Write(QTableWidget* pTable, int nRow, int nColumn, const VTCell& cell);

/// Makes a bar of 0 to 100 percent with visible text. The caller owns it until a table takes it.
QProgressBar* NewProgressBar(int nPercent, const VTCodeTables& codeTables);

/// Sets a bar to a percentage; the style sheet is parsed only when the band changes. A value out of range
/// empties the bar.
void SetProgress(QProgressBar* pBar, int nPercent, const QString& strStyle);

/// Sets the bar of a cell to a percentage; creates the bar if missing.
void WriteProgress(QTableWidget* pTable, int nRow, int nColumn, int nPercent, const VTCodeTables& codeTables);

/// Writes all cells of a job's row.
void WriteJob(QTableWidget* pTable, int nRow, const VTJobRecord& job, const VTCodeTables& codeTables,
    Qt::CheckState checkState = Qt::Unchecked);

/// Translates the statuses of all rows of a job table, where they are shown as text and tool tip, from their codes.
void RetranslateJobStatuses(const QTableWidget* pTable, const VTCodeTables& codeTables);

} // namespace VTTableCells
