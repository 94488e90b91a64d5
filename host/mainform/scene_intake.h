#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

class QFileDialog;
class VTMessagboxInterface;
class VTRenderCoreInterface;
class VTUiLoaderInterface;

/// The ways by which the user brings scenes: dropped on the main form, chosen behind its button "btnSubmit", or handed
/// over by the command line. As an event filter on the form it sees the drops; at the first event it finds the button.
class SceneIntake : public QObject
{
    Q_OBJECT

public:
    /// The services must outlive the intake.
    SceneIntake(VTRenderCoreInterface* renderCore, VTMessagboxInterface* messageBox,
        VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Submits the scenes, once somebody is signed in. Those that are not taken are named to the user in one notice.
    void Take(const QStringList& scenes);

    /// Somebody is signed in.
    void Open();
    /// Nobody is any more; what comes waits.
    void Close();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Attach(QWidget* form);
    void AskForScenes();
    void TakeWaiting();

    VTRenderCoreInterface* m_renderCore;
    VTMessagboxInterface* m_messageBox;
    VTUiLoaderInterface* m_loader;
    QPointer<QWidget> m_form;
    QStringList m_waiting;
    QTimer m_soon;
    bool m_open = false;
    QPointer<QFileDialog> m_dialog;
};
