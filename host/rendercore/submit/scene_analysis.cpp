#include "host/rendercore/submit/scene_analysis.h"

#include "host/rendercore/submit/blender_scene.h"
#include "host/rendercore/submit/maya_scene.h"
#include "host/rendercore/submit/povray_scene.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace {

const QVector<SceneKind>& Kinds()
{
    static const QVector<SceneKind> kinds {
        {"povray", {QStringLiteral("pov")},
            [](const QString& scene, const QByteArray& /*report*/, const BytesRead& onBytes) {
                return AnalysePovRayScene(scene, onBytes);
            }},
        {"blender", {QStringLiteral("blend")}, AnalyseBlenderScene, "blender", BlenderArguments,
            SubmitText::BlenderReads, SubmitText::BlenderLacking, SubmitText::BlenderFailed},
        {"maya", {QStringLiteral("ma"), QStringLiteral("mb")},
            [](const QString& scene, const QByteArray& /*report*/, const BytesRead& onBytes) {
                return AnalyseMayaScene(scene, onBytes);
            }},
    };
    return kinds;
}

} // namespace

const SceneKind* KindOfScene(const QString& file)
{
    const QString suffix = QFileInfo(file).suffix().toLower();
    const auto kind = std::find_if(Kinds().cbegin(), Kinds().cend(),
        [&suffix](const SceneKind& each) { return each.suffixes.contains(suffix); });
    return kind == Kinds().cend() ? nullptr : &*kind;
}

QStringList SceneSuffixes()
{
    QStringList suffixes;
    for (const SceneKind& kind : Kinds())
        suffixes += kind.suffixes;
    return suffixes;
}

QString JobTypeOf(const QString& scene)
{
    const SceneKind* const kind = KindOfScene(scene);
    return kind != nullptr ? QString::fromLatin1(kind->jobType) : QString();
}

TaskMessage WhyNotAnalysed(const QString& scene)
{
    const QFileInfo file(scene);
    const SceneKind* const kind = KindOfScene(scene);
    if (kind == nullptr || !file.isFile() || !file.isReadable())
        return SubmitText::SceneUnreadable;
    if (!IsSendablePath(file.fileName()))
        return SubmitText::SceneNameRefused;
    const bool lacksProgram = kind->program != nullptr
        && QStandardPaths::findExecutable(QString::fromLatin1(kind->program)).isEmpty();
    return lacksProgram ? TaskMessage(kind->lacking) : TaskMessage();
}

QString RealScenePath(const QString& scene)
{
    const QFileInfo file(scene);
    return QDir(QDir(file.absolutePath()).canonicalPath()).filePath(file.fileName());
}

SceneAnalysis AnalyseScene(const QString& scene, const BytesRead& onBytes, const QByteArray& report)
{
    SceneAnalysis analysis;
    analysis.error = WhyNotAnalysed(scene);
    if (!analysis.error.IsEmpty())
        return analysis;
    analysis = KindOfScene(scene)->analyse(RealScenePath(scene), report, onBytes);
    if (analysis.files.size() > MostSceneFiles
        || analysis.missing.size() + analysis.absolute.size() > MostSceneFiles)
        analysis.error = TooManyFiles();
    return analysis;
}
