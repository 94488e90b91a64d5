#pragma once

class QString;
class VTSettingsInterface;

/// The number of days for which an account's finished downloads stay in the list.
namespace KeepDays {

constexpr int Longest = 999;

/// The key of an account's setting.
QString Key(const QString& userName);

/// @return 0 (for ever) to Longest.
int Of(VTSettingsInterface* settings, const QString& userName);

} // namespace KeepDays
