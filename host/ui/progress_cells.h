#pragma once

#include <QAccessible>
#include <QObject>

class QTableWidget;

/// Lets a screen reader read the progress bars of a table, which stand in cells without items. Costs nothing as long as no
/// assistive program listens. The table owns it.
class ProgressCells : public QObject, private QAccessible::ActivationObserver
{
    Q_OBJECT

public:
    explicit ProgressCells(QTableWidget* table);
    ~ProgressCells() override;

private:
    void accessibilityActiveChanged(bool active) override;
    void DescribeRows(int first, int last);

    QTableWidget* m_table;
    bool m_isActive; // whether an assistive program listens
};
