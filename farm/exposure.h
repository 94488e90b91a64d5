#pragma once

namespace farm {

class AccountStore;
struct FarmSettings;

/// Throws std::runtime_error, which says what to do, when other machines could reach the farm without an encrypting
/// proxy, or could sign in to demo accounts, whose passwords everybody knows.
void CheckExposure(AccountStore& accounts, const FarmSettings& settings);

} // namespace farm
