#include "host/mainform/notice_board.h"

#include "vtr_messagboxinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QIcon>
#include <QPointer>

#include <utility>

NoticeBoard::NoticeBoard(VTMessagboxInterface* messageBox, VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_messageBox(messageBox)
    , m_loader(loader)
{
    m_turn.setSingleShot(true);
    m_turn.setInterval(0);
    connect(&m_turn, &QTimer::timeout, this, &NoticeBoard::ShowNext);
}

void NoticeBoard::Show(const QString& text)
{
    if (m_waiting.contains(text))
        return;
    m_waiting.append(text);
    m_turn.start();
}

void NoticeBoard::ShowNext()
{
    if (m_isShowing || m_waiting.isEmpty())
        return;
    const QString text = std::exchange(m_waiting, QStringList()).join(QLatin1String("\n\n"));
    const QPointer<NoticeBoard> alive(this);
    m_isShowing = true;
    const QIcon icon(QStringLiteral(":/%1/main.png").arg(m_loader->GetSkin()));
    m_messageBox->ShowMessage(VTMessagboxInterface::Notice, tr("QuillStar Client"), {}, icon, text,
        {{QStringLiteral("btnMessageBox_1"), tr("Ok")}}, true);
    if (!alive)
        return;
    m_isShowing = false;
    m_turn.start();
}
