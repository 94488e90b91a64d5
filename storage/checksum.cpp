#include "storage/checksum.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <openssl/evp.h>
#include <stdexcept>

namespace storage {

namespace {

constexpr qint64 BlockBytes = 1024 * 1024;
constexpr int ChecksumDigits = 64;

std::runtime_error ReadError(const QFile& file)
{
    return std::runtime_error(
        "cannot read " + QFileInfo(file).fileName().toStdString() + ": " + file.errorString().toStdString());
}

void Require(int isDone)
{
    if (isDone != 1)
        throw std::runtime_error("cannot compute a checksum");
}

bool IsLowerHexDigit(QChar character)
{
    return (character >= QLatin1Char('0') && character <= QLatin1Char('9'))
        || (character >= QLatin1Char('a') && character <= QLatin1Char('f'));
}

} // namespace

void Sha256::Free::operator()(evp_md_ctx_st* context) const
{
    EVP_MD_CTX_free(context);
}

Sha256::Sha256()
    : m_context(EVP_MD_CTX_new())
{
    Require(m_context ? 1 : 0);
    Reset();
}

void Sha256::Add(const char* bytes, qint64 count)
{
    Require(EVP_DigestUpdate(m_context.get(), bytes, static_cast<std::size_t>(count)));
}

QString Sha256::Result() const
{
    // Reading the result would end the computation, so it is read from a copy.
    const Sha256 copy;
    Require(EVP_MD_CTX_copy_ex(copy.m_context.get(), m_context.get()));
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest {};
    unsigned int size = 0;
    Require(EVP_DigestFinal_ex(copy.m_context.get(), digest.data(), &size));
    const auto bytes
        = QByteArray::fromRawData(reinterpret_cast<const char*>(digest.data()), static_cast<int>(size));
    return QString::fromLatin1(bytes.toHex());
}

void Sha256::Reset()
{
    Require(EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr));
}

QString FileChecksum(const QString& path, const std::function<bool(qint64)>& onBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ReadError(file);
    Sha256 hash;
    QByteArray block(BlockBytes, Qt::Uninitialized);
    for (;;) {
        const qint64 got = file.read(block.data(), block.size());
        if (got < 0)
            throw ReadError(file);
        if (got == 0)
            return hash.Result();
        hash.Add(block.constData(), got);
        if (onBytes && !onBytes(got))
            return {};
    }
}

bool IsChecksum(const QString& text)
{
    return text.size() == ChecksumDigits && std::all_of(text.cbegin(), text.cend(), IsLowerHexDigit);
}

} // namespace storage
