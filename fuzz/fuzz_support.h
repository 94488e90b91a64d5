#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstddef>
#include <cstdint>

/// The entry point of each target. It is called with one input after another and returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// A copy of the input; reading beyond its end is noticed.
inline QByteArray Bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

/// Ends the program, which makes the input a finding, unless the rule holds.
inline void Require(bool holds, const char* rule)
{
    if (!holds)
        qFatal("broken rule: %s", rule);
}

inline void WriteFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    Require(
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "the disk can be written");
}
