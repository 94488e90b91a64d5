#include "host/rendercore/submit/scene_analysis.h"

#include "host/rendercore/submit/maya_scene.h"
#include "host/rendercore/submit/povray_scene.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>
#include <QFileInfo>

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
        analysis.error = TooManyFiles();
    return analysis;
}
