#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>

class QLineEdit;
class QListWidget;
class QPushButton;

/// Offers the account's projects in the dialog that names a new group, so that the user can pick one instead of typing.
class ProjectPicker : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Finds the dialog. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession();

    void SetProjects(const QStringList& names) { m_projects = names; }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// A group has been named, and the window has added it unless there was one of this name.
    void Named(const QString& group);

private:
    void Offer();
    void TakeSelected();
    void MarkTyped();

    QPointer<QWidget> m_form;
    QPointer<QWidget> m_part; // the part of the dialog that lists the projects
    QPointer<QListWidget> m_list;
    QPointer<QLineEdit> m_name;
    QPointer<QPushButton> m_ok;
    QStringList m_projects;
};
