#pragma once

#include <QString>

namespace farm {

class Refusal;

/// The answer to a request that is refused: a status, a word for programs and a sentence for people. Routes throw it.
struct HttpRefusal
{
    int status;
    const char* word;
    QString message;
    int retryAfterSeconds = 0;
};

/// The HTTP answer for a refusal thrown below the HTTP layer.
HttpRefusal HttpRefusalFor(const Refusal& refusal);

} // namespace farm
