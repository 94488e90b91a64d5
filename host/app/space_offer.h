#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

class RenderCoreService;
class VTMessagboxInterface;
class VTUiLoaderInterface;

/// Asks, when the files of scenes would exceed the account's space on the farm, whether to show what takes it. The scenes
/// go on once space has been freed.
class SpaceOffer : public QObject
{
    Q_OBJECT

public:
    /// The services must outlive this object.
    SpaceOffer(RenderCoreService* renderCore, VTMessagboxInterface* messageBox, VTUiLoaderInterface* loader,
        QObject* parent = nullptr);

    /// The scenes that wait for space have gone with the session.
    void EndSession();

    /// Lets the scenes that wait for space go on.
    void Continue();

signals:
    /// The user wants to see what takes the space.
    void SpaceRequested();

private:
    void Ask();
    QStringList Unasked() const;
    QString Names(const QStringList& ids) const;

    RenderCoreService* m_renderCore;
    VTMessagboxInterface* m_messageBox;
    VTUiLoaderInterface* m_loader;
    QStringList m_waiting; // tasks that wait while the user frees space
    bool m_isAsking = false;
    int m_session = 0;
    QTimer m_turn; // asks once control returns to the event loop
};
