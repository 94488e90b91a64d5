#pragma once

#include "host/frames/chart_layout.h"

#include <QColor>
#include <QWidget>

#include <functional>

/// A bar chart. The skin sets its colours.
class ChartView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor barColor MEMBER m_barColor)
    Q_PROPERTY(QColor markColor MEMBER m_markColor)
    Q_PROPERTY(QColor lineColor MEMBER m_lineColor)
    Q_PROPERTY(QColor textColor MEMBER m_textColor)

public:
    /// The values and their texts.
    struct Data
    {
        std::vector<double> values;
        QString nothing;                            ///< shown instead of bars when all values are 0
        std::function<QString(double value)> scale; ///< label of a value at the axis
        std::function<QString(int index)> label;    ///< label below a value's bar
        std::function<QString(const ChartBar& bar)> toolTip;
        QString name;        ///< of the chart, for screen readers
        QString description; ///< what it shows, for screen readers
    };

    using QWidget::QWidget;

    void SetData(const Data& shown);

    /// Marks the bar of a value; -1 for none.
    void Mark(int index);

    QSize minimumSizeHint() const override;

signals:
    /// The bar of this value has been clicked.
    void Clicked(int index);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void LayOut();
    void DrawTexts(QPainter& painter) const;

    Data m_data;
    ChartLayout m_layout;
    QRect m_room; // the area of the bars
    int m_marked = -1;
    QColor m_barColor = Qt::blue;
    QColor m_markColor = Qt::black;
    QColor m_lineColor = Qt::gray;
    QColor m_textColor = Qt::black;
};
