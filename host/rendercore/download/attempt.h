#pragma once

#include <QtGlobal>

#include <exception>

/// Runs what may throw; the database on a full disk, for one.
/// @param what completes "cannot" in the log.
/// @return whether it did not throw.
template <typename Work>
bool Attempt(const char* what, Work work)
{
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        qWarning("downloads: cannot %s: %s", what, failure.what());
        return false;
    }
}
