#include "farm/base/money.h"

#include <QRegularExpression>

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

QString AmountText(Micros amount)
{
    const Micros positive = amount < 0 ? -amount : amount;
    QString text
        = QStringLiteral("%1%2").arg(amount < 0 ? QStringLiteral("-") : QString()).arg(positive / OneUnit);
    if (positive % OneUnit == 0)
        return text;
    text += QStringLiteral(".%1").arg(positive % OneUnit, 6, 10, QLatin1Char('0'));
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    return text;
}

// A number with a decimal point would not keep every millionth.
std::optional<Micros> AmountFromText(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A(-?)([0-9]{1,9})(?:\\.([0-9]{1,6}))?\\z"));
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const Micros fraction = match.captured(3).leftJustified(6, QLatin1Char('0')).toLongLong();
    const Micros amount = match.captured(2).toLongLong() * OneUnit + fraction;
    return match.captured(1).isEmpty() ? amount : -amount;
}

Micros Charge(std::int64_t coreMilliseconds, Micros pricePerCoreSecond)
{
    return (coreMilliseconds * pricePerCoreSecond + 500) / 1000;
}

} // namespace farm
