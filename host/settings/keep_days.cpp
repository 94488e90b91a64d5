#include "host/settings/keep_days.h"

#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

namespace KeepDays {

namespace {

constexpr int Default = 30;

} // namespace

QString Key(const QString& userName)
{
    return SettingKeys::OfAccount(userName, "keepfinisheddays");
}

int Of(VTSettingsInterface* settings, const QString& userName)
{
    bool isNumber = false;
    const int days = settings->Value(Key(userName), Default).toInt(&isNumber);
    return isNumber && days >= 0 && days <= Longest ? days : Default;
}

} // namespace KeepDays
