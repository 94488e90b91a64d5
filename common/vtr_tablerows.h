#pragma once

#include <QList>
#include <QSet>
#include <QString>
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

/// Marks that the user has made in a table, by row identifier. They outlive a refill: take them before, restore them
/// after it.
class Marks
{
public:
    explicit Marks(const QTableWidget* pTable);

    Qt::CheckState CheckState(const QString& strId) const;

    /// Checks the rows that were checked, and restores the position.
    void Restore(QTableWidget* pTable) const;

    /// Makes the row with the identifier of the current one current again, or none if there is no such row any more,
    /// and scrolls back.
    void RestorePosition(QTableWidget* pTable) const;

private:
    QSet<QString> m_setChecked;
    QString m_strCurrent;
    int m_nCurrentColumn;
    int m_nScrollX;
    int m_nScrollY;
};

} // namespace VTTableRows
