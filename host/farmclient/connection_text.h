#pragma once

#include "host/farmclient/connection_feed.h"

#include <QString>

/// The connection in words, in the current language. They may contain texts of servers and must be shown as plain text.
namespace ConnectionText {

/// @return for example "Not reachable since 22:44, list as of 22:43".
QString Status(const ConnectionState& state, const QDateTime& now);

/// @return for example "↑ 2.1 MB/s harbour · ↓ 3 frames, 8.0 MB/s"; empty while nothing is transferred.
QString Traffic(const ConnectionPicture& picture);

/// @return a failure in one line, for example "Submitting a job: The farm does not render jobs of this type."
QString Failure(const Exchange& exchange);

/// @return all failures with their times, causes and requests, latest first.
QString History(const ConnectionState& state, const QDateTime& now);

/// @return the purpose of a request, for example "Submitting a job".
QString Purpose(const QByteArray& verb, const QByteArray& path);

} // namespace ConnectionText
