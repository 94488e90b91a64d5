#pragma once

#include <QObject>

class QLabel;
class QWidget;

/// Lets the left side of the main form scroll where the form is too low for the group panel, whose height the window
/// computes from that of the form. Names the panel's lists and an empty project for screen readers. The form owns it.
class SideColumn : public QObject
{
    Q_OBJECT

public:
    explicit SideColumn(QWidget* form);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void PreparePanel() const;
    void NameProject() const;

    QWidget* m_column;
    QWidget* m_groups;
    QLabel* m_project;
};
