#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTableWidget>
#include <QTimer>

#include <vector>

class VTSettingsInterface;

/// @return the widths scaled so that they add up to `total` pixels; none smaller than `least`, as far as that fits.
std::vector<int> ScaledTo(int total, const std::vector<int>& widths, int least);

/// Keeps the widths that a user gives to the columns of one table: their shares of its width, for each account. The window
/// spreads columns evenly whenever its layout changes; this puts the user's shares back.
class ColumnWidths : public QObject
{
    Q_OBJECT

public:
    /// @param usual shares of accounts that have chosen none, in any unit.
    /// @param settings must outlive this object.
    ColumnWidths(QTableWidget* table, std::vector<int> usual, VTSettingsInterface* settings,
        QObject* parent = nullptr);

    /// Reads the account's widths.
    void BeginSession(const QString& userName);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QString Key() const;
    std::vector<int> Shown() const;
    void Apply();
    void Keep();

    QPointer<QTableWidget> m_table;
    VTSettingsInterface* m_settings;
    QString m_userName;
    std::vector<int> m_usual;
    std::vector<int> m_shares; // in any unit; empty for the usual ones
    bool m_isDragging = false;
    bool m_wasDragged = false;
    bool m_isApplying = false;
    QTimer m_applying; // applies the shares once after all columns have been resized
};
