#pragma once

#include <QObject>

class QWidget;

/// Keeps a widget of a form level with another one, which the window moves. The widget owns it.
class LevelWidget : public QObject
{
    Q_OBJECT

public:
    LevelWidget(QWidget* widget, QWidget* leader);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_widget;
    QWidget* m_leader;
};
