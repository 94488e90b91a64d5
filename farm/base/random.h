#pragma once

#include <QByteArray>
#include <QString>

namespace farm {

/// To be called before any other function of libsodium; does its work once.
/// Throws std::runtime_error when this machine has no source of random numbers.
void PrepareSodium();

/// Throws as PrepareSodium() does.
QByteArray RandomBytes(int count);

/// 96 random bits as hexadecimal digits: an id that nobody can guess.
QString NewId();

} // namespace farm
