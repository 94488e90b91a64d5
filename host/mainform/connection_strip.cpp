#include "host/mainform/connection_strip.h"

#include "host/farmclient/connection_text.h"
#include "host/ui/message_text.h"

#include <QEvent>
#include <QLayout>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace {

constexpr int Interval = 1000; // ms between two updates, at least
constexpr int Around = 40;     // pixels of padding and icon

QString PhaseName(const ConnectionState& state, const QDateTime& now)
{
    switch (state.PhaseAt(now)) {
    case ConnectionState::Phase::Connected:
        return state.News(now) ? QStringLiteral("refused") : QStringLiteral("connected");
    case ConnectionState::Phase::TryingAgain:
        return QStringLiteral("trying");
    default:
        return QStringLiteral("unreachable");
    }
}

} // namespace

ConnectionStrip::ConnectionStrip(ConnectionFeed* feed, QWidget* parent)
    : QPushButton(parent)
    , m_feed(feed)
{
    setObjectName(QStringLiteral("btnConnection"));
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_update.setSingleShot(true);
    connect(&m_update, &QTimer::timeout, this, &ConnectionStrip::Update);
    connect(feed, &ConnectionFeed::Fed, this, &ConnectionStrip::Schedule);
}

/// Qt does not count the icon of a style sheet.
QSize ConnectionStrip::sizeHint() const
{
    return {
        fontMetrics().size(Qt::TextShowMnemonic, text()).width() + Around, QPushButton::sizeHint().height()};
}

/// A narrow form leaves room for the icon at least.
QSize ConnectionStrip::minimumSizeHint() const
{
    return {Around, QPushButton::minimumSizeHint().height()};
}

void ConnectionStrip::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text = fontMetrics().elidedText(text(), Qt::ElideRight, width() - Around, Qt::TextShowMnemonic);
    painter.drawControl(QStyle::CE_PushButton, option);
}

void ConnectionStrip::showEvent(QShowEvent* event)
{
    QPushButton::showEvent(event);
    m_isOnScreen = true;
    Update();
}

void ConnectionStrip::hideEvent(QHideEvent* event)
{
    QPushButton::hideEvent(event);
    m_isOnScreen = false;
    m_update.stop();
}

void ConnectionStrip::changeEvent(QEvent* event)
{
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::LanguageChange && m_isOnScreen)
        Update();
}

void ConnectionStrip::Schedule()
{
    if (!m_isOnScreen)
        return;
    const qint64 pause = m_updated.isValid() ? std::max<qint64>(0, Interval - m_updated.elapsed()) : 0;
    if (!m_update.isActive() || m_update.remainingTime() > pause)
        m_update.start(int(pause));
}

void ConnectionStrip::Update()
{
    m_updated.start();
    const QDateTime now = QDateTime::currentDateTime();
    m_picture = m_feed->Look();
    Show(now);
    Wake(now);
    emit Updated();
}

void ConnectionStrip::Show(const QDateTime& now)
{
    QStringList parts {ConnectionText::Status(m_picture.state, now)};
    const ConnectionState::Entry* news = m_picture.state.News(now);
    if (news)
        parts = QStringList(ConnectionText::Failure(news->latest));
    parts.append(ConnectionText::Traffic(m_picture));
    parts.removeAll({});
    const QString line = parts.join(QStringLiteral(" \u00b7 "));
    SetPhase(PhaseName(m_picture.state, now));
    const QString hint = tr("Opens the list of the latest failures.");
    if (accessibleName() == line && accessibleDescription() == hint)
        return;
    setAccessibleName(line);
    setAccessibleDescription(hint);
    setToolTip(PlainToolTip(line + QLatin1Char('\n') + hint));
    setText(QString(line).replace(QLatin1Char('&'), QLatin1String("&&")));
    // Otherwise a longer text would be painted elided once, before the layout makes room for it.
    if (parentWidget() && parentWidget()->layout())
        parentWidget()->layout()->activate();
}

void ConnectionStrip::SetPhase(const QString& phase)
{
    constexpr char Phase[] = "phase";
    if (property(Phase) == phase)
        return;
    setProperty(Phase, phase);
    // A style sheet does not follow a property by itself.
    style()->unpolish(this);
    style()->polish(this);
}

/// Looks again by itself only while something is transferred or a phase or news is about to end.
void ConnectionStrip::Wake(const QDateTime& now)
{
    const QDateTime next = m_picture.state.NextChange(now);
    if (m_picture.up.count + m_picture.down.count > 0)
        m_update.start(Interval);
    else if (next.isValid())
        m_update.start(int(std::max<qint64>(Interval, now.msecsTo(next))));
}
