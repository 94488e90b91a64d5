#include "host/mainform/transfer_buttons.h"

#include "common/vtr_tablerows.h"
#include "host/mainform/main_form.h"
#include "host/settings/download_folder.h"
#include "vtr_rendercoreinterface.h"

#include <QDesktopServices>
#include <QDir>
#include <QPushButton>
#include <QTableWidget>
#include <QUrl>

TransferButtons::TransferButtons(
    VTRenderCoreInterface* renderCore, VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_renderCore(renderCore)
    , m_settings(settings)
{
    m_folderChecks.setMaxThreadCount(1);
    connect(this, &TransferButtons::FolderChecked, this, &TransferButtons::ShowFolder, Qt::QueuedConnection);
}

TransferButtons::~TransferButtons()
{
    // Drops the checks that have not begun, so that the destructor waits only for the running one.
    m_folderChecks.clear();
}

void TransferButtons::BeginSession(const QString& userName)
{
    m_userName = userName;
    QWidget* form = FindMainForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    Connect("btnPause", [this] { CommandChecked(&VTRenderCoreInterface::StopDownloadTasks); });
    Connect("btnRecover", [this] { CommandChecked(&VTRenderCoreInterface::ResumeDownloadTasks); });
    Connect("btnRetryFailed", [this] { emit RetryFailedRequested(); });
    Connect("btnOpenFolder", [this] { OpenFolder(); });
    Connect("btnPauseTasks", [this] { m_renderCore->StopSubmitTasks(); });
    Connect("btnResumeTasks", [this] { m_renderCore->ResumeSubmitTasks(); });
}

template <typename Action>
void TransferButtons::Connect(const char* button, Action action)
{
    if (const auto* found = m_form->findChild<QPushButton*>(QLatin1String(button)))
        connect(found, &QPushButton::clicked, this, action);
}

void TransferButtons::CommandChecked(Command command)
{
    const QTableWidget* table = FindDownloadTable();
    // On the other tabs the button belongs to the window.
    if (!table || !table->isVisible())
        return;
    const QStringList ids = VTTableRows::CheckedIds(table);
    if (ids.isEmpty())
        emit Notice(tr("Please check the downloads first."));
    else
        (m_renderCore->*command)(ids);
}

/// The folder is checked in another thread, because it may be on a slow network.
void TransferButtons::OpenFolder()
{
    m_folderChecks.clear();
    m_folderChecks.start([this, folder = DownloadFolder::Of(m_settings, m_userName)] {
        emit FolderChecked(folder, DownloadFolder::Trouble(folder).isEmpty());
    });
}

void TransferButtons::ShowFolder(const QString& folder, bool isUsable)
{
    if (!isUsable || !QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        emit Notice(tr("The folder %1 could not be opened.").arg(QDir::toNativeSeparators(folder)));
}
