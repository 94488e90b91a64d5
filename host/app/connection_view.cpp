#include "host/app/connection_view.h"

#include "host/farmclient/connection_text.h"
#include "host/mainform/connection_strip.h"
#include "host/mainform/main_form.h"

#include <QDateTime>
#include <QLayout>

ConnectionView::ConnectionView(ConnectionFeed* feed, VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_feed(feed)
    , m_dialog(loader)
{
    connect(&m_dialog, &ConnectionDialog::TryAgainRequested, this, &ConnectionView::TryAgainRequested);
}

void ConnectionView::BeginSession(const QString& server, const QString& token)
{
    m_feed->BeginSession(token.toLatin1());
    m_server = server;
    const QWidget* form = FindMainForm();
    auto* place = form ? form->findChild<QWidget*>(QStringLiteral("wgtConnection")) : nullptr;
    if (!place || !place->layout() || m_strip)
        return;
    m_strip = new ConnectionStrip(m_feed, place);
    // The strip gets the whole free width of the title bar, so a longer text never has to wait for space.
    place->layout()->addWidget(m_strip);
    place->layout()->setAlignment(m_strip, Qt::AlignLeft);
    if (auto* previous = form->findChild<QWidget*>(QStringLiteral("btnGroups")))
        QWidget::setTabOrder(previous, m_strip);
    connect(m_strip, &ConnectionStrip::Updated, this, &ConnectionView::Refresh);
    connect(m_strip, &ConnectionStrip::clicked, this, &ConnectionView::Open);
}

void ConnectionView::EndSession()
{
    m_dialog.Close();
    m_feed->EndSession();
}

void ConnectionView::Open()
{
    m_dialog.Open();
    Refresh();
    m_feed->MarkRead();
}

void ConnectionView::Refresh()
{
    if (!m_strip || !m_dialog.Form()->isVisible())
        return;
    const QDateTime now = QDateTime::currentDateTime();
    const ConnectionPicture& picture = m_strip->Picture();
    QStringList parts {ConnectionText::Status(picture.state, now), ConnectionText::Traffic(picture)};
    parts.removeAll({});
    m_dialog.SetTexts(
        parts.join(QStringLiteral(" \u00b7 ")), m_server, ConnectionText::History(picture.state, now));
}
