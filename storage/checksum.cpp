#include "storage/checksum.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
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

bool IsLowerHexDigit(QChar character)
{
    return (character >= QLatin1Char('0') && character <= QLatin1Char('9'))
        || (character >= QLatin1Char('a') && character <= QLatin1Char('f'));
}

} // namespace

QString FileChecksum(const QString& path, const std::function<bool(qint64)>& onBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ReadError(file);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray block(BlockBytes, Qt::Uninitialized);
    for (;;) {
        const qint64 got = file.read(block.data(), block.size());
        if (got < 0)
            throw ReadError(file);
        if (got == 0)
            return QString::fromLatin1(hash.result().toHex());
        hash.addData(block.constData(), static_cast<int>(got));
        if (onBytes && !onBytes(got))
            return {};
    }
}

bool IsChecksum(const QString& text)
{
    return text.size() == ChecksumDigits && std::all_of(text.cbegin(), text.cend(), IsLowerHexDigit);
}

} // namespace storage
