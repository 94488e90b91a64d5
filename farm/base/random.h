#pragma once

#include <QByteArray>
#include <QString>

namespace farm {

/// Initialises libsodium; call it before its other functions. Repeated calls do nothing.
/// Throws std::runtime_error when this machine has no source of random numbers.
void PrepareSodium();

/// Throws as PrepareSodium() does.
QByteArray RandomBytes(int count);

/// 96 random bits as hexadecimal digits: an id that nobody can guess.
QString NewId();

} // namespace farm
