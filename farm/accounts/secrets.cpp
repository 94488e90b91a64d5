#include "farm/accounts/secrets.h"

#include <array>
#include <mutex>
#include <sodium.h>
#include <stdexcept>

namespace farm {

namespace {

void EnsureSodium()
{
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw std::runtime_error("no source of random numbers");
}

// One password at a time: each takes 64 MiB, and a crowd of sign-ins must not take the machine's memory.
std::mutex& PasswordMutex()
{
    static std::mutex mutex;
    return mutex;
}

QByteArray RandomBytes(int count)
{
    EnsureSodium();
    QByteArray bytes(count, '\0');
    randombytes_buf(bytes.data(), static_cast<std::size_t>(count));
    return bytes;
}

} // namespace

QString HashPassword(const QString& password)
{
    EnsureSodium();
    const std::lock_guard<std::mutex> lock(PasswordMutex());
    const QByteArray plain = password.toUtf8();
    std::array<char, crypto_pwhash_STRBYTES> stored {};
    if (crypto_pwhash_str(stored.data(), plain.constData(), static_cast<unsigned long long>(plain.size()),
            crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE)
        != 0)
        throw std::runtime_error("not enough memory to hash a password");
    return QString::fromLatin1(stored.data());
}

bool PasswordMatches(const QString& password, const QString& stored)
{
    // Without this an unknown name would be told from a wrong password by the time the answer takes.
    static const QByteArray nobody = HashPassword(QString::fromLatin1(RandomBytes(16).toHex())).toLatin1();
    const std::lock_guard<std::mutex> lock(PasswordMutex());
    const QByteArray plain = password.toUtf8();
    const QByteArray hash = stored.isEmpty() ? nobody : stored.toLatin1();
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
    EnsureSodium();
    const QByteArray text = token.toUtf8();
    QByteArray hash(crypto_generichash_BYTES, '\0');
    crypto_generichash(reinterpret_cast<unsigned char*>(hash.data()), static_cast<std::size_t>(hash.size()),
        reinterpret_cast<const unsigned char*>(text.constData()),
        static_cast<unsigned long long>(text.size()), nullptr, 0);
    return QString::fromLatin1(hash.toHex());
}

QString NewId()
{
    return QString::fromLatin1(RandomBytes(12).toHex());
}

} // namespace farm
