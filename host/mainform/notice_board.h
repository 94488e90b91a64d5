#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

class VTMessagboxInterface;
class VTUiLoaderInterface;

/// Shows the host's notices in message boxes. Those that arrive while one is open are shown together afterwards.
class NoticeBoard : public QObject
{
    Q_OBJECT

public:
    /// All services must outlive this object.
    NoticeBoard(VTMessagboxInterface* messageBox, VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Returns at once. A notice that is waiting to be shown is not added again.
    void Show(const QString& text);

private:
    void ShowNext();

    VTMessagboxInterface* m_messageBox;
    VTUiLoaderInterface* m_loader;
    QStringList m_waiting;
    bool m_isShowing = false;
    QTimer m_turn; // shows the next notice once control returns to the event loop
};
