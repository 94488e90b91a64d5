#pragma once

#include <QObject>
#include <QPointer>
#include <QTableWidget>
#include <QTimer>

#include <vector>

/// @return the widths scaled so that they add up to `total` pixels; none smaller than `least`, as far as that fits.
std::vector<int> ScaledTo(int total, const std::vector<int>& widths, int least);

/// Keeps the columns of a table together as wide as the table, whatever else sets their widths. Users change the shares
/// of the columns by dragging their headers.
class ColumnFit : public QObject
{
    Q_OBJECT

public:
    /// @param shares of the width, in any unit; columns beyond them have a share of 1.
    ColumnFit(QTableWidget* table, std::vector<int> shares, QObject* parent);

    void SetShares(std::vector<int> shares);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The user has given the columns these shares.
    void Dragged(const std::vector<int>& shares);

private:
    std::vector<int> Shown() const;
    void Apply();

    QPointer<QTableWidget> m_table;
    QObject* m_header = nullptr; ///< only compared: at its last events the table may be half destroyed
    std::vector<int> m_shares;
    bool m_isDragging = false;
    bool m_wasDragged = false;
    bool m_isApplying = false;
    QTimer m_applying; // applies the shares once after all columns have been resized
};
