#pragma once

#include <QString>

/// How passwords and session tokens are kept; no other code knows.
namespace farm {

/// The text to store for a password. Takes about a tenth of a second and 64 MiB.
QString HashPassword(const QString& password);

/// Whether this is the password that `stored` was made from. Takes as long as HashPassword(), also when `stored` is empty,
/// which no password matches.
bool PasswordMatches(const QString& password, const QString& stored);

/// 256 random bits as text that can stand in a header.
QString NewToken();

/// The text to store for a token, which does not reveal the token.
QString HashToken(const QString& token);

} // namespace farm
