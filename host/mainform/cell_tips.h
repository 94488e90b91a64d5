#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

/// Shows the whole text of a cell or header of the main form's tables as a tool tip where the column is too narrow for it.
class CellTips : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Watches the tables. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QWidget> m_form;
};
