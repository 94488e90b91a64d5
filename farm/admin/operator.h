#pragma once

#include "farm/accounts/audit.h"

namespace farm {

/// The person at the command line, for the audit: the user of this machine, and the one who became that user with sudo.
Actor Operator();

/// Asks for a new password twice without showing it; reads one line instead when standard input is not a terminal.
/// Throws InvalidInput.
QString ReadNewPassword();

} // namespace farm
