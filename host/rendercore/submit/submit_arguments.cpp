#include "host/rendercore/submit/submit_arguments.h"

#include "host/farmclient/farm_numbers.h"

#include <QJsonArray>
#include <QVariantMap>

namespace {

const QString WidthKey = QStringLiteral("width");
const QString HeightKey = QStringLiteral("height");
const QString PrerenderKey = QStringLiteral("prerender");

QString StartKey(int range)
{
    return QStringLiteral("startFrame_%1").arg(range);
}

QString EndKey(int range)
{
    return QStringLiteral("endFrame_%1").arg(range);
}

bool IsSide(const QString& text)
{
    bool isNumber = false;
    const int side = text.toInt(&isNumber);
    return text.isEmpty() || (isNumber && side >= 1 && side <= FarmNumbers::LongestSide);
}

} // namespace

QVariantList MakeArguments(int firstFrame, int lastFrame, int width, int height)
{
    return {QVariantMap {{StartKey(0), firstFrame}, {EndKey(0), lastFrame},
        {WidthKey, QString::number(width)}, {HeightKey, QString::number(height)}, {PrerenderKey, false}}};
}

QVariantList WithUsableSizes(const QVariantList& arguments)
{
    QVariantList usable;
    for (const QVariant& range : arguments) {
        QVariantMap values = range.toMap();
        for (const QString& side : {WidthKey, HeightKey}) {
            if (!IsSide(values.value(side).toString()))
                values.insert(side, QString());
        }
        usable.append(values);
    }
    return usable;
}

bool AreArguments(const QVariantList& arguments)
{
    if (arguments.isEmpty() || arguments.size() > FarmNumbers::MostRanges)
        return false;
    int frames = 0;
    for (int range = 0; range < arguments.size(); ++range) {
        const QVariantMap values = arguments.at(range).toMap();
        const int start = values.value(StartKey(range)).toInt();
        const int end = values.value(EndKey(range)).toInt();
        if (start < 1 || end < start || end > FarmNumbers::LastFrame
            || !IsSide(values.value(WidthKey).toString()) || !IsSide(values.value(HeightKey).toString()))
            return false;
        frames += end - start + 1;
    }
    return frames <= FarmNumbers::MostFrames;
}

QJsonObject JobMembers(const QVariantList& arguments, int width, int height, int step)
{
    QJsonArray frames;
    for (int range = 0; range < arguments.size(); ++range) {
        const QVariantMap values = arguments.at(range).toMap();
        frames.append(QJsonObject {{QStringLiteral("start"), values.value(StartKey(range)).toInt()},
            {QStringLiteral("end"), values.value(EndKey(range)).toInt()}, {QStringLiteral("step"), step}});
    }
    // Every range carries the same size and switch. The last range is used, as in the dialog.
    const QVariantMap last = arguments.value(arguments.size() - 1).toMap();
    const QString widthText = last.value(WidthKey).toString();
    const QString heightText = last.value(HeightKey).toString();
    return {{QStringLiteral("frames"), frames}, {WidthKey, widthText.isEmpty() ? width : widthText.toInt()},
        {HeightKey, heightText.isEmpty() ? height : heightText.toInt()},
        {PrerenderKey, last.value(PrerenderKey).toBool()}};
}
