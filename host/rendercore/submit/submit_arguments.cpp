#include "host/rendercore/submit/submit_arguments.h"

#include <QJsonArray>
#include <QVariantMap>

namespace {

const QString kWidth = QStringLiteral("width");
const QString kHeight = QStringLiteral("height");
const QString kPrerender = QStringLiteral("prerender");

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
    return text.isEmpty() || (isNumber && side >= 1 && side <= kLongestSide);
}

} // namespace

QVariantList MakeArguments(int firstFrame, int lastFrame, int width, int height)
{
    return {QVariantMap {{StartKey(0), firstFrame}, {EndKey(0), lastFrame}, {kWidth, QString::number(width)},
        {kHeight, QString::number(height)}, {kPrerender, false}}};
}

QVariantList WithUsableSizes(const QVariantList& arguments)
{
    QVariantList usable;
    for (const QVariant& range : arguments) {
        QVariantMap values = range.toMap();
        for (const QString& side : {kWidth, kHeight}) {
            if (!IsSide(values.value(side).toString()))
                values.insert(side, QString());
        }
        usable.append(values);
    }
    return usable;
}

bool AreArguments(const QVariantList& arguments)
{
    if (arguments.isEmpty() || arguments.size() > kMostRanges)
        return false;
    int frames = 0;
    for (int range = 0; range < arguments.size(); ++range) {
        const QVariantMap values = arguments.at(range).toMap();
        const int start = values.value(StartKey(range)).toInt();
        const int end = values.value(EndKey(range)).toInt();
        if (start < 1 || end < start || end > kLastFrame || !IsSide(values.value(kWidth).toString())
            || !IsSide(values.value(kHeight).toString()))
            return false;
        frames += end - start + 1;
    }
    return frames <= kMostFrames;
}

QJsonObject JobMembers(const QVariantList& arguments, int width, int height)
{
    QJsonArray frames;
    for (int range = 0; range < arguments.size(); ++range) {
        const QVariantMap values = arguments.at(range).toMap();
        frames.append(QJsonObject {{QStringLiteral("start"), values.value(StartKey(range)).toInt()},
            {QStringLiteral("end"), values.value(EndKey(range)).toInt()}});
    }
    // Every range carries the same size and switch; like the dialog, the last one counts.
    const QVariantMap last = arguments.value(arguments.size() - 1).toMap();
    const QString widthText = last.value(kWidth).toString();
    const QString heightText = last.value(kHeight).toString();
    return {{QStringLiteral("frames"), frames}, {kWidth, widthText.isEmpty() ? width : widthText.toInt()},
        {kHeight, heightText.isEmpty() ? height : heightText.toInt()},
        {kPrerender, last.value(kPrerender).toBool()}};
}
