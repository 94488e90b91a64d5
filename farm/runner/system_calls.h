#pragma once

/// Denies a renderer some kinds of system calls, whatever its user may do.
namespace farm::SystemCalls {

/// Forbids the calling process, and all that it starts, to change the permissions and attributes of files. A scene may
/// share its files with the farm's contents, and their owner could otherwise make them writable. Needs no_new_privs, makes
/// only system calls. Returns whether it is done.
bool ForbidAttributes();
/// Whether that works on this machine; elsewhere ForbidAttributes() does nothing.
bool CanForbidAttributes();

/// Takes from root what other users do not have, so that the permissions of files bind it too. Does nothing for others.
void DropCapabilities();

} // namespace farm::SystemCalls
