#pragma once

#include <stdexcept>

/// Why the farm does not do what it was asked to do. The texts are sentences for whoever asked; of the request they
/// repeat nothing but the names of its members.
namespace farm {

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

/// The request does not fit the present state, which whoever asked should look at again.
class Conflict : public Refusal
{
public:
    using Refusal::Refusal;
};

/// Another request is being served with the same thing.
class Busy : public Conflict
{
public:
    using Conflict::Conflict;
};

/// More than the farm accepts from anybody.
class TooLarge : public Refusal
{
public:
    using Refusal::Refusal;
};

/// More than the account may take.
class QuotaExceeded : public Refusal
{
public:
    using Refusal::Refusal;
};

} // namespace farm
