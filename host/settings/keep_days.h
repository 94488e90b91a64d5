#pragma once

class QString;
class VTSettingsInterface;

/// Decides for how many days an account's finished downloads stay in the list.
namespace KeepDays {

constexpr int Longest = 999;

/// The setting of one account.
QString Key(const QString& userName);

/// @return 0 for ever, at most Longest.
int Of(VTSettingsInterface* settings, const QString& userName);

} // namespace KeepDays
