#include "host/rendercore/submit/scene_contents.h"

#include "host/rendercore/submit/submit_arguments.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool IsControl(QChar character)
{
    return character.unicode() < 0x20 || character.unicode() == 0x7f;
}

} // namespace

bool IsSendablePath(const QString& path)
{
    return !path.isEmpty() && !path.contains(QLatin1Char('\\')) && !path.contains(QLatin1Char(':'))
        && std::none_of(path.cbegin(), path.cend(), IsControl);
}

QString FirstReadable(const QStringList& candidates)
{
    for (const QString& candidate : candidates) {
        const QFileInfo file(candidate);
        if (file.isFile() && file.isReadable())
            return file.absoluteFilePath();
    }
    return {};
}

void SetFrames(SceneAnalysis& analysis, int first, int last)
{
    analysis.firstFrame = std::clamp(first, 1, LastFrame);
    analysis.lastFrame
        = std::clamp(last, analysis.firstFrame, std::min(LastFrame, analysis.firstFrame + MostFrames - 1));
}

void SetSize(SceneAnalysis& analysis, int width, int height)
{
    if (width >= 1 && width <= LongestSide)
        analysis.width = width;
    if (height >= 1 && height <= LongestSide)
        analysis.height = height;
}
