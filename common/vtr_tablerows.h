#pragma once

#include <QList>
#include <QStringList>

class QTableWidget;

/// The rows of any of the client's tables: their identifiers and check boxes, which are in `VTIdColumn`.
namespace VTTableRows {

/// Identifier of a row; empty when there is no such row.
QString Id(const QTableWidget* pTable, int nRow);

/// Identifiers of all rows, top to bottom.
QStringList AllIds(const QTableWidget* pTable);

/// The checked rows, top to bottom.
QList<int> Checked(const QTableWidget* pTable);

/// Identifiers of the checked rows, top to bottom.
QStringList CheckedIds(const QTableWidget* pTable);

void SetCheckStates(const QTableWidget* pTable, Qt::CheckState state);

/// Removes all rows.
void Clear(QTableWidget* pTable);

} // namespace VTTableRows
