#include "host/farmclient/connection_text.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace ConnectionText {

namespace {

QString Translated(const char* text)
{
    return QCoreApplication::translate("ConnectionText", text);
}

struct Request
{
    const char* pattern; ///< matches verb and path
    const char* purpose;
};

constexpr Request requests[] = {
    {"^POST /session$", QT_TRANSLATE_NOOP("ConnectionText", "Signing in")},
    {"^DELETE /session$", QT_TRANSLATE_NOOP("ConnectionText", "Signing out")},
    {"^GET /events$", QT_TRANSLATE_NOOP("ConnectionText", "Following changes on the farm")},
    {"^GET /account$", QT_TRANSLATE_NOOP("ConnectionText", "Loading the balance")},
    {"^GET /account/storage$", QT_TRANSLATE_NOOP("ConnectionText", "Loading the space on the farm")},
    {"^DELETE /account/storage$", QT_TRANSLATE_NOOP("ConnectionText", "Removing unneeded files")},
    {"^GET /projects$", QT_TRANSLATE_NOOP("ConnectionText", "Loading the projects")},
    {"^(GET /jobs|POST /jobs/search)$", QT_TRANSLATE_NOOP("ConnectionText", "Loading the list of jobs")},
    {"^POST /jobs$", QT_TRANSLATE_NOOP("ConnectionText", "Submitting a job")},
    {"^POST /jobs/stop$", QT_TRANSLATE_NOOP("ConnectionText", "Stopping jobs")},
    {"^POST /jobs/recover$", QT_TRANSLATE_NOOP("ConnectionText", "Recovering jobs")},
    {"^POST /jobs/restart$", QT_TRANSLATE_NOOP("ConnectionText", "Restarting jobs")},
    {"^POST /jobs/delete$", QT_TRANSLATE_NOOP("ConnectionText", "Deleting jobs")},
    {"^POST /jobs/full-render$", QT_TRANSLATE_NOOP("ConnectionText", "Starting a full render")},
    {"^POST /jobs/priority$", QT_TRANSLATE_NOOP("ConnectionText", "Changing the priority of a job")},
    {"^GET /jobs/[^/]+/files$", QT_TRANSLATE_NOOP("ConnectionText", "Loading the list of frames")},
    {"^GET /jobs/[^/]+/files/", QT_TRANSLATE_NOOP("ConnectionText", "Downloading a frame")},
    {"^GET /jobs/", QT_TRANSLATE_NOOP("ConnectionText", "Loading a job")},
    {"^POST /contents/", QT_TRANSLATE_NOOP("ConnectionText", "Comparing files with the farm")},
    {"^POST /uploads/[^/]+/unpack$", QT_TRANSLATE_NOOP("ConnectionText", "Unpacking files on the farm")},
    {"^[A-Z]+ /uploads", QT_TRANSLATE_NOOP("ConnectionText", "Uploading files")},
};

QString TimeText(const QDateTime& time, const QDateTime& now)
{
    return time.toString(time.date() == now.date() ? QStringLiteral("HH:mm") : QStringLiteral("MM-dd HH:mm"));
}

QString UpText(const Flow& flow)
{
    return QStringLiteral("\u2191 %1")
        .arg(flow.speed > 0 ? QStringLiteral("%1 %2").arg(SpeedText(flow.speed), flow.name) : flow.name);
}

QString DownText(const Flow& flow)
{
    const QString frames = flow.count == 1
        ? Translated(QT_TRANSLATE_NOOP("ConnectionText", "1 frame"))
        : Translated(QT_TRANSLATE_NOOP("ConnectionText", "%1 frames")).arg(flow.count);
    return QStringLiteral("\u2193 %1")
        .arg(flow.speed > 0 ? QStringLiteral("%1, %2").arg(frames, SpeedText(flow.speed)) : frames);
}

/// @return the request as the farm sees it; the system's own words for a fault without a request.
QString Detail(const Exchange& exchange)
{
    return exchange.verb.isEmpty() ? exchange.fault.words
                                   : QString::fromLatin1(exchange.verb + ' ' + exchange.Path());
}

QString EntryText(const ConnectionState::Entry& entry, const QDateTime& now)
{
    QString head = TimeText(entry.latest.time, now);
    const QString purpose = Purpose(entry.latest.verb, entry.latest.Path());
    if (!purpose.isEmpty())
        head += QStringLiteral(" \u2013 ") + purpose;
    if (entry.count > 1)
        head += QStringLiteral(" (%1)").arg(
            Translated(QT_TRANSLATE_NOOP("ConnectionText", "%1 times")).arg(entry.count));
    QStringList lines {head, entry.latest.fault.Text(), Detail(entry.latest)};
    lines.removeAll({});
    return lines.join(QLatin1Char('\n'));
}

} // namespace

QString Purpose(const QByteArray& verb, const QByteArray& path)
{
    if (verb.isEmpty())
        return {};
    const QString request = QString::fromLatin1(verb + ' ' + path);
    const auto found = std::find_if(std::begin(requests), std::end(requests), [&request](const Request& row) {
        return request.contains(QRegularExpression(QLatin1String(row.pattern)));
    });
    return found == std::end(requests) ? Translated(QT_TRANSLATE_NOOP("ConnectionText", "Asking the farm"))
                                       : Translated(found->purpose);
}

QString Status(const ConnectionState& state, const QDateTime& now)
{
    switch (state.PhaseAt(now)) {
    case ConnectionState::Phase::Connected:
        return Translated(QT_TRANSLATE_NOOP("ConnectionText", "Connected"));
    case ConnectionState::Phase::TryingAgain:
        return Translated(QT_TRANSLATE_NOOP("ConnectionText", "Trying again…"));
    default:
        break;
    }
    const QString since = TimeText(state.FailingSince(), now);
    return state.ListTime().isValid()
        ? Translated(QT_TRANSLATE_NOOP("ConnectionText", "Not reachable since %1, list as of %2"))
              .arg(since, TimeText(state.ListTime(), now))
        : Translated(QT_TRANSLATE_NOOP("ConnectionText", "Not reachable since %1")).arg(since);
}

QString Traffic(const ConnectionPicture& picture)
{
    QStringList flows;
    if (picture.up.count > 0)
        flows.append(UpText(picture.up));
    if (picture.down.count > 0)
        flows.append(DownText(picture.down));
    return flows.join(QStringLiteral(" \u00b7 "));
}

QString Failure(const Exchange& exchange)
{
    const QString purpose = Purpose(exchange.verb, exchange.Path());
    const QString text = exchange.fault.Text();
    return purpose.isEmpty() ? text
                             : Translated(QT_TRANSLATE_NOOP("ConnectionText", "%1: %2")).arg(purpose, text);
}

QString History(const ConnectionState& state, const QDateTime& now)
{
    QStringList texts;
    for (const ConnectionState::Entry& entry : state.Entries())
        texts.append(EntryText(entry, now));
    return texts.join(QLatin1String("\n\n"));
}

} // namespace ConnectionText
