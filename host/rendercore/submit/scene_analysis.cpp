#include "host/rendercore/submit/scene_analysis.h"

#include "host/rendercore/submit/maya_scene.h"
#include "host/rendercore/submit/povray_scene.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

bool IsControl(QChar character)
{
    return character.unicode() < 0x20 || character.unicode() == 0x7f;
}

} // namespace

bool IsSceneName(const QString& file)
{
    return !JobTypeOf(file).isEmpty();
}

QString JobTypeOf(const QString& scene)
{
    const QString suffix = QFileInfo(scene).suffix().toLower();
    if (suffix == QLatin1String("pov"))
        return QStringLiteral("povray");
    const bool isMaya = suffix == QLatin1String("ma") || suffix == QLatin1String("mb");
    return isMaya ? QStringLiteral("maya") : QString();
}

SceneAnalysis AnalyseScene(const QString& scene, const BytesRead& onBytes)
{
    const QFileInfo file(scene);
    SceneAnalysis analysis;
    if (!file.isFile() || !file.isReadable())
        analysis.error = QString::fromLatin1(SubmitText::SceneUnreadable);
    else if (!IsSendablePath(file.fileName()))
        analysis.error = QString::fromLatin1(SubmitText::SceneNameRefused);
    if (!analysis.error.isEmpty())
        return analysis;

    // A renderer that follows ".." gets to the parent of the real folder, not of a link to it.
    const QString path = QDir(QDir(file.absolutePath()).canonicalPath()).filePath(file.fileName());
    if (JobTypeOf(scene) == QLatin1String("povray"))
        analysis = AnalysePovRayScene(path, onBytes);
    else
        analysis = AnalyseMayaScene(path, onBytes);
    if (analysis.files.size() > MostSceneFiles || analysis.missing.size() > MostSceneFiles)
        analysis.error = QStringLiteral("The scene needs more than %1 files.").arg(MostSceneFiles);
    return analysis;
}

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
