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

/// How the farm answers a request that one of its rooms has refused.
HttpRefusal HttpRefusalFor(const Refusal& refusal);

} // namespace farm
