#pragma once

#include <stdexcept>

namespace farm {

/// A frame cannot be rendered because of its scene or renderer; the farm is not at fault.
class SceneError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The farm refuses a request. The texts of these errors are sentences for the client; of the request they quote
/// nothing but member names.
class Refusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The request itself is wrong: something is missing, has another type or is out of range.
class InvalidInput : public Refusal
{
public:
    using Refusal::Refusal;
};

/// There is no such thing, or it belongs to another account.
class NotFound : public Refusal
{
public:
    using Refusal::Refusal;
};

/// The request does not fit the current state; the client should look again.
class Conflict : public Refusal
{
public:
    using Refusal::Refusal;
};

/// Another request is using the same thing.
class Busy : public Conflict
{
public:
    using Conflict::Conflict;
};

/// The request is larger than the farm accepts.
class TooLarge : public Refusal
{
public:
    using Refusal::Refusal;
};

/// The account's quota is exhausted.
class QuotaExceeded : public Refusal
{
public:
    using Refusal::Refusal;
};

} // namespace farm
