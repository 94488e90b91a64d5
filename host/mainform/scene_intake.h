#pragma once

#include <QObject>
#include <QPair>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <QWidget>

#include <functional>

class QFileDialog;
class VTMessagboxInterface;
class VTUiLoaderInterface;

/// Submits the scenes that the user drops on the main form, chooses with its button "btnSubmit", or names on the
/// command line. It sees drops as an event filter of the form, and finds the button at the first event.
class SceneIntake : public QObject
{
    Q_OBJECT

public:
    /// Submits a scene as a job of a priority. @return like VTRenderCoreInterface::SubmitScene().
    using Submitter = std::function<int(const QString& scene, int priority)>;

    /// All services must outlive this object.
    /// @param suffixes are those of the scenes that can be submitted, in lower case.
    SceneIntake(const QStringList& suffixes, Submitter submitter, VTMessagboxInterface* messageBox,
        VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Submits the scenes as soon as somebody is signed in. Notices name those that cannot be submitted, and those that
    /// are being submitted already.
    void Submit(const QStringList& scenes, int priority = 0);

    /// Tells the user that a scene that was accepted cannot be submitted after all.
    void ShowRefusal(const QString& scene, const QString& reason);

    void BeginSession();

    /// Scenes submitted from now on wait for the next session.
    void EndSession();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Attach(QWidget* form);
    void AskForScenes();
    void SubmitWaiting();
    void ShowRefusals();
    void Tell(const QString& text, const QStringList& scenes);

    QStringList m_suffixes;
    Submitter m_submitter;
    VTMessagboxInterface* m_messageBox;
    VTUiLoaderInterface* m_loader;
    QPointer<QWidget> m_form;
    QVector<QPair<QString, int>> m_waiting; // scenes and priorities
    QTimer m_submitting;                    // submits once control returns to the event loop
    QStringList m_refusals;
    QTimer m_telling; // shows the refusals in one notice
    bool m_signedIn = false;
    QPointer<QFileDialog> m_dialog;
};
