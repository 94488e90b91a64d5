#include "farm/base/money.h"

namespace farm {

QString Currency()
{
    return QStringLiteral("RMB");
}

QString MoneyText(Micros amount)
{
    constexpr Micros MicrosPerCent = 10000;
    const Micros half = amount < 0 ? -MicrosPerCent / 2 : MicrosPerCent / 2;
    const Micros cents = (amount + half) / MicrosPerCent;
    const Micros positive = cents < 0 ? -cents : cents;
    return QStringLiteral("%1%2.%3")
        .arg(cents < 0 ? QStringLiteral("-") : QString())
        .arg(positive / 100)
        .arg(positive % 100, 2, 10, QLatin1Char('0'));
}

Micros Charge(std::int64_t coreMilliseconds, Micros pricePerCoreSecond)
{
    return (coreMilliseconds * pricePerCoreSecond + 500) / 1000;
}

} // namespace farm
