#include "farm/base/random.h"

#include <sodium.h>
#include <stdexcept>

namespace farm {

void PrepareSodium()
{
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw std::runtime_error("this machine has no source of random numbers");
}

QByteArray RandomBytes(int count)
{
    PrepareSodium();
    QByteArray bytes(count, '\0');
    randombytes_buf(bytes.data(), static_cast<std::size_t>(count));
    return bytes;
}

QString NewId()
{
    return QString::fromLatin1(RandomBytes(12).toHex());
}

} // namespace farm
