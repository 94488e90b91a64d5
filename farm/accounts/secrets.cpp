#include "farm/accounts/secrets.h"

#include "farm/base/random.h"

#include <array>
#include <mutex>
#include <sodium.h>
#include <stdexcept>

namespace farm {

namespace {

// One password at a time: each takes 64 MiB, and many sign-ins at once must not use up the machine's memory.
std::mutex& PasswordMutex()
{
    static std::mutex mutex;
    return mutex;
}

/// The hash with which passwords for unknown names are compared. That takes as long as for known names, so the time
/// does not reveal which names exist.
const QString& NobodysPassword()
{
    static const QString stored = HashPassword(QString::fromLatin1(RandomBytes(16).toHex()));
    return stored;
}

} // namespace

void PreparePasswords()
{
    NobodysPassword();
}

QString HashPassword(const QString& password)
{
    PrepareSodium();
    const std::lock_guard<std::mutex> lock(PasswordMutex());
    const QByteArray plain = password.toUtf8();
    std::array<char, crypto_pwhash_STRBYTES> stored {};
    if (crypto_pwhash_str(stored.data(), plain.constData(), static_cast<unsigned long long>(plain.size()),
            crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE)
        != 0)
        throw std::runtime_error("there is not enough memory to hash a password");
    return QString::fromLatin1(stored.data());
}

bool PasswordMatches(const QString& password, const QString& stored)
{
    const QByteArray hash = (stored.isEmpty() ? NobodysPassword() : stored).toLatin1();
    const std::lock_guard<std::mutex> lock(PasswordMutex());
    const QByteArray plain = password.toUtf8();
    const bool matches = crypto_pwhash_str_verify(hash.constData(), plain.constData(),
                             static_cast<unsigned long long>(plain.size()))
        == 0;
    return matches && !stored.isEmpty();
}

QString NewToken()
{
    return QString::fromLatin1(
        RandomBytes(32).toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

QString HashToken(const QString& token)
{
    PrepareSodium();
    const QByteArray text = token.toUtf8();
    QByteArray hash(crypto_generichash_BYTES, '\0');
    crypto_generichash(reinterpret_cast<unsigned char*>(hash.data()), static_cast<std::size_t>(hash.size()),
        reinterpret_cast<const unsigned char*>(text.constData()),
        static_cast<unsigned long long>(text.size()), nullptr, 0);
    return QString::fromLatin1(hash.toHex());
}

} // namespace farm
