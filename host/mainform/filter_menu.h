#pragma once

#include <QObject>
#include <QPointer>
#include <QPushButton>

class QListWidget;
class QMenu;

/// The menu of the button beside the current project. It makes the group panel's functions available by keyboard:
/// statuses and groups to choose, groups to add and to delete.
class FilterMenu : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Finds the button. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession();

private:
    void Fill();
    void AddChoices(QListWidget* list);

    QPointer<QPushButton> m_button;
    QPointer<QMenu> m_menu;
};
