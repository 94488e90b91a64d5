#pragma once

#include <QAccessible>
#include <QObject>

class QTableWidget;

/// Writes the percentages beside a table's progress bars in the colour of its other texts, where a skin hides those of
/// the bars: the window fixes their colours, which are hard to read. Lets a screen reader read the bars, whose cells
/// have no items; that costs nothing as long as no assistive program listens. The table owns it.
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
