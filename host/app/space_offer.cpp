#include "host/app/space_offer.h"

#include "host/services/render_core_service.h"
#include "host/ui/consent.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

SpaceOffer::SpaceOffer(RenderCoreService* renderCore, VTMessagboxInterface* messageBox,
    VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_renderCore(renderCore)
    , m_messageBox(messageBox)
    , m_loader(loader)
{
    m_turn.setSingleShot(true);
    m_turn.setInterval(0);
    connect(&m_turn, &QTimer::timeout, this, &SpaceOffer::Ask);
    connect(renderCore, &RenderCoreService::SpaceLacking, &m_turn, qOverload<>(&QTimer::start));
}

void SpaceOffer::EndSession()
{
    ++m_session;
    m_waiting.clear();
}

void SpaceOffer::Continue()
{
    const QStringList ids = std::exchange(m_waiting, QStringList());
    for (const QString& id : ids)
        m_renderCore->UploadRetryAnswer(id, true);
}

void SpaceOffer::Ask()
{
    const QStringList ids = Unasked();
    if (m_isAsking || ids.isEmpty())
        return;
    const QPointer<SpaceOffer> self = this;
    const int session = m_session;
    m_isAsking = true;
    const bool isWanted = AskForConsent(m_messageBox, m_loader,
        {tr("Space on the farm"),
            tr("The files of these scenes would exceed your space on the farm. Show what takes the space?"),
            tr("Show"), Names(ids)});
    if (!self)
        return;
    m_isAsking = false;
    m_turn.start(); // for scenes that have come meanwhile
    if (m_session != session)
        return;
    if (isWanted) {
        m_waiting.append(ids);
        emit SpaceRequested();
        return;
    }
    for (const QString& id : ids)
        m_renderCore->UploadRetryAnswer(id, false);
}

QStringList SpaceOffer::Unasked() const
{
    QStringList ids = m_renderCore->TasksWithoutSpace();
    for (const QString& id : m_waiting)
        ids.removeAll(id);
    return ids;
}

QString SpaceOffer::Names(const QStringList& ids) const
{
    QStringList names;
    for (const QString& id : ids)
        names.append(QFileInfo(m_renderCore->GetTaskSceneFile(id)).fileName());
    return names.join(QLatin1Char('\n'));
}
