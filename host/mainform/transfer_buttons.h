#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QThreadPool>
#include <QWidget>

class QTableWidget;
class VTRenderCoreInterface;
class VTSettingsInterface;

/// The main form's buttons for transfers. On the tab of downloads, where the window ignores them, Recover and Stop
/// resume and stop the checked downloads; the other buttons exist only in the host's form.
class TransferButtons : public QObject
{
    Q_OBJECT

public:
    /// All services must outlive this object.
    TransferButtons(
        VTRenderCoreInterface* renderCore, VTSettingsInterface* settings, QObject* parent = nullptr);
    ~TransferButtons() override;

    /// Finds the buttons. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession(const QString& userName);

signals:
    void RetryFailedRequested();

    /// @param text tells the user why nothing happens.
    void Notice(const QString& text);

    /// Emitted in another thread.
    void FolderChecked(const QString& folder, bool isUsable);

private:
    using Command = void (VTRenderCoreInterface::*)(const QStringList& ids);

    template <typename Action>
    void Connect(const char* button, Action action);
    void CommandChecked(Command command);
    void OpenFolder();
    void ShowFolder(const QString& folder, bool isUsable);

    VTRenderCoreInterface* m_renderCore;
    VTSettingsInterface* m_settings;
    QString m_userName;
    QPointer<QWidget> m_form;
    QThreadPool m_folderChecks; // last member, because its destructor waits for the checking thread
};
