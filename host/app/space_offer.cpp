#include "host/app/space_offer.h"

#include "host/services/render_core_service.h"
#include "vtr_messagboxinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QFileInfo>
#include <QIcon>
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
    const QString show = QStringLiteral("btnMessageBox_2");
    const QIcon icon(QStringLiteral(":/%1/main.png").arg(m_loader->GetSkin()));
    m_isAsking = true;
    const QString pressed = m_messageBox->ShowMessage(VTMessagboxInterface::Question, tr("Space on the farm"),
        tr("The files of these scenes would exceed your space on the farm. Show what takes the space?"), icon,
        Names(ids), {{QStringLiteral("btnMessageBox_1"), tr("Cancel")}, {show, tr("Show")}}, true);
    if (!self)
        return;
    m_isAsking = false;
    m_turn.start(); // for scenes that have come meanwhile
    if (m_session != session)
        return;
    if (pressed == show) {
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
