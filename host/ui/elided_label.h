#pragma once

#include <QObject>

class QLabel;

/// Ends the text of a label with an ellipsis where the label is too narrow for it. The label owns it.
class ElidedLabel : public QObject
{
    Q_OBJECT

public:
    explicit ElidedLabel(QLabel* label);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLabel* m_label;
};
