#pragma once

/// Denies a renderer some system calls, whatever rights its user has.
namespace farm::SystemCalls {

/// Forbids the calling process and its children to change the permissions and attributes of files. A scene may
/// share its files with the farm's contents, and their owner could otherwise make them writable. Needs no_new_privs and
/// makes only system calls. Returns whether it succeeded.
bool ForbidAttributes();
/// Whether ForbidAttributes() works on this machine; if not, it does nothing.
bool CanForbidAttributes();

/// Takes root's privileges away, so that the permissions of files bind it too. Does nothing for other users.
void DropCapabilities();

} // namespace farm::SystemCalls
