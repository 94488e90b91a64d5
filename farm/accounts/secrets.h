#pragma once

#include <QString>

/// The form in which passwords and session tokens are stored. No other code knows it.
namespace farm {

/// Makes the first PasswordMatches() as quick as later ones.
void PreparePasswords();

/// The text to store for a password. Takes about a tenth of a second and 64 MiB.
QString HashPassword(const QString& password);

/// Whether this is the password that `stored` was made from. An empty `stored` matches no password. Takes as long as
/// HashPassword(), even when `stored` is empty.
bool PasswordMatches(const QString& password, const QString& stored);

/// 256 random bits as text that can be sent in a header.
QString NewToken();

/// The text to store for a token, which does not reveal the token.
QString HashToken(const QString& token);

} // namespace farm
