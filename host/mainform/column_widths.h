#pragma once

#include "host/ui/column_fit.h"

#include <QObject>
#include <QString>

#include <vector>

class VTSettingsInterface;

/// Keeps the widths that users give to the columns of one table, as shares of its width, for each account.
class ColumnWidths : public QObject
{
    Q_OBJECT

public:
    /// @param usual the shares for accounts that have chosen none, in any unit.
    /// @param settings must outlive this object.
    ColumnWidths(QTableWidget* table, std::vector<int> usual, VTSettingsInterface* settings,
        QObject* parent = nullptr);

    /// Reads the account's widths.
    void BeginSession(const QString& userName);

private:
    QString Key() const;
    void Keep(const std::vector<int>& shares);

    VTSettingsInterface* m_settings;
    QString m_tableName;
    QString m_userName;
    std::vector<int> m_usual;
    ColumnFit m_fit;
};
