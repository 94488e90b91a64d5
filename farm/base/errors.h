#pragma once

#include <stdexcept>

namespace farm {

/// A request cannot be read. The text is for its sender and repeats nothing of the request but key names.
class BadInput : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace farm
