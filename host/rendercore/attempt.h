#pragma once

#include <QtGlobal>

#include <exception>

/// Runs work that may throw, such as a database on a full disk, and logs why it failed.
/// @param what completes "cannot …" in the log.
/// @return whether the work succeeded.
template <typename Work>
bool Attempt(const char* what, Work work)
{
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        qWarning("cannot %s: %s", what, failure.what());
        return false;
    }
}
