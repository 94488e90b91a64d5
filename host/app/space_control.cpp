#include "host/app/space_control.h"

#include "host/farmclient/farm_protocol.h"
#include "host/farmclient/http_call.h"
#include "host/mainform/main_form.h"
#include "host/services/communication_service.h"
#include "host/ui/consent.h"
#include "vtr_uiloaderinterface.h"

#include <QMenu>
#include <QPushButton>

#include <algorithm>

namespace {

bool IsOver(const FarmSpace::Job& job)
{
    return job.status == VTCodeTables::JobFinished || job.status == VTCodeTables::JobFailed;
}

QString DeletionQuestion(const std::vector<FarmSpace::Job>& jobs)
{
    qint64 files = 0;
    qint64 pictures = 0;
    for (const FarmSpace::Job& job : jobs) {
        files += job.files;
        pictures += job.pictures;
    }
    const auto open = std::count_if(jobs.begin(), jobs.end(), [](const auto& job) { return !IsOver(job); });
    QStringList sentences {jobs.size() == 1
            ? SpaceControl::tr("Delete 1 job and free up to %1 of your space on the farm?")
                  .arg(SpaceText(files))
            : SpaceControl::tr("Delete %1 jobs and free up to %2 of your space on the farm?")
                  .arg(jobs.size())
                  .arg(SpaceText(files))};
    if (pictures > 0)
        sentences.append(
            SpaceControl::tr("Their pictures there (%1) are deleted, too.").arg(SpaceText(pictures)));
    if (open > 0)
        sentences.append(SpaceControl::tr("Jobs that have not ended yet: %1.").arg(open));
    return sentences.join(QLatin1Char('\n'));
}

} // namespace

SpaceControl::SpaceControl(CommunicationService* communication, VTMessagboxInterface* messageBox,
    VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_communication(communication)
    , m_messageBox(messageBox)
    , m_loader(loader)
    , m_dialog(loader)
{
    m_entry.setEnabled(false);
    connect(&m_entry, &QAction::triggered, this, &SpaceControl::Open);
    connect(&m_dialog, &SpaceDialog::RefreshRequested, this, &SpaceControl::Load);
    connect(&m_dialog, &SpaceDialog::MoreRequested, this, &SpaceControl::Reload);
    connect(&m_dialog, &SpaceDialog::DeleteRequested, this, &SpaceControl::AskToDelete);
    connect(&m_dialog, &SpaceDialog::FreeRequested, this, &SpaceControl::AskToFree);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, &SpaceControl::Translate);
    Translate();
    // The last entries are those for signing out and quitting.
    if (QMenu* menu = loader->GetMenu(QStringLiteral("menuTray"), {}))
        menu->insertAction(menu->actions().value(1), &m_entry);
}

void SpaceControl::BeginSession(const QString& token)
{
    m_token = token;
    m_entry.setEnabled(true);
    const QWidget* form = FindMainForm();
    if (const auto* button = form ? form->findChild<QPushButton*>(QStringLiteral("btnSpace")) : nullptr)
        connect(button, &QPushButton::clicked, &m_entry, &QAction::trigger, Qt::UniqueConnection);
}

void SpaceControl::EndSession()
{
    m_token.clear();
    m_entry.setEnabled(false);
    m_dialog.Close();
}

void SpaceControl::Open()
{
    m_dialog.Open();
}

void SpaceControl::Translate()
{
    m_entry.setText(tr("Space on the farm"));
}

/// @return the call; it ends with the session.
HttpCall* SpaceControl::Ask(const QByteArray& verb, const QByteArray& query)
{
    return m_communication->Ask({verb, "/account/storage" + query, m_token.toLatin1(), {}, true});
}

void SpaceControl::Load()
{
    if (m_token.isEmpty() || m_load)
        return;
    m_load = Ask("GET", "?jobs=" + QByteArray::number(m_dialog.WantedJobs()));
    connect(m_load, &HttpCall::Finished, this, [this](const HttpResult& result) {
        m_load.clear();
        const auto space = FarmSpace::Read(result.json);
        if (result.status != HttpStatus::Ok)
            m_dialog.SetFailure(result.error);
        else if (space)
            m_dialog.SetSpace(*space);
        else
            m_dialog.SetFailure(tr("The server's answer cannot be read."));
    });
}

/// An answer on its way tells what was there or wanted before.
void SpaceControl::Reload()
{
    delete m_load.data();
    m_load.clear();
    Load();
}

void SpaceControl::AskToDelete(const std::vector<FarmSpace::Job>& jobs)
{
    if (AskToConfirm(DeletionQuestion(jobs), tr("Delete")))
        Delete(jobs);
}

void SpaceControl::AskToFree(qint64 bytes)
{
    if (!AskToConfirm(
            tr("Remove %1 of files that no job needs? Scenes that use them have to send them again.")
                .arg(SpaceText(bytes)),
            tr("Remove")))
        return;
    m_dialog.SetBusy(true);
    Free();
}

/// @return whether the user agrees and is still signed in to the same session; otherwise this object may be gone.
bool SpaceControl::AskToConfirm(const QString& question, const QString& consent)
{
    const QPointer<SpaceControl> self = this;
    const QString token = m_token;
    const bool agrees = AskForConsent(m_messageBox, m_loader, {tr("Space on the farm"), question, consent});
    return self && agrees && !m_token.isEmpty() && m_token == token;
}

void SpaceControl::Delete(const std::vector<FarmSpace::Job>& jobs)
{
    QVariantHash request {{QStringLiteral("token"), m_token}};
    for (std::size_t i = 0; i < jobs.size(); ++i)
        request.insert(QStringLiteral("id[%1]").arg(i), jobs[i].id);
    m_dialog.SetBusy(true);
    connect(
        m_communication->AskToDelete(request), &HttpCall::Finished, this, [this](const HttpResult& result) {
            if (result.status == HttpStatus::Ok) {
                Free();
                return;
            }
            m_dialog.SetBusy(false);
            m_dialog.SetFailure(result.error);
        });
}

/// The farm keeps the files of deleted jobs for a while, and they count for as long.
void SpaceControl::Free()
{
    connect(Ask("DELETE"), &HttpCall::Finished, this, [this](const HttpResult& result) {
        m_dialog.SetBusy(false);
        if (result.status != HttpStatus::Ok) {
            m_dialog.SetFailure(result.error);
            return;
        }
        Reload();
        emit Freed();
    });
}
