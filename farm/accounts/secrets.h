#pragma once

#include <QString>

/// Passwords and session tokens; the only place that knows how they are kept.
namespace farm {

/// The text to store for a password. Takes about a tenth of a second and 64 MiB.
QString HashPassword(const QString& password);

/// As dear as HashPassword(). `stored` may be empty: then the answer is no, after the same time.
bool PasswordMatches(const QString& password, const QString& stored);

/// 256 random bits as text that can stand in a header.
QString NewToken();

/// What is stored of a token, so that the database does not give sessions away.
QString HashToken(const QString& token);

/// 96 random bits as hexadecimal digits, for identities that cannot be guessed.
QString NewId();

} // namespace farm
