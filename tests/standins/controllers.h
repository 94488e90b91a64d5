#pragma once

#include <QChildEvent>
#include <QCoreApplication>
#include <QHash>
#include <QPointer>

/// Finds the plugin's objects by class. The dialog controllers have no parent to search in, but the application's event
/// filter sees each of them receive a child.
class Controllers : public QObject
{
public:
    Controllers() { qApp->installEventFilter(this); }

    /// The object of a class that was built last; null when it is gone.
    QObject* Find(const char* className) const { return m_found.value(className); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        const QByteArray className = object->metaObject()->className();
        if (event->type() == QEvent::ChildAdded && className.startsWith("VT"))
            m_found.insert(className, object);
        return false;
    }

private:
    QHash<QByteArray, QPointer<QObject>> m_found;
};
