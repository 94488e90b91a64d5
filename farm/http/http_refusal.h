#pragma once

#include <QString>

namespace farm {

/// A request is refused: thrown by what cannot do it, becomes the answer with this status.
struct ApiRefusal
{
    int status;
    const char* word;
    QString message;
    int retryAfterSeconds = 0;
};

} // namespace farm
