#include "host/rendercore/submit/blender_scene.h"

#include "host/farmclient/farm_numbers.h"
#include "host/rendercore/submit/file_pattern.h"
#include "host/rendercore/submit/folder_listing.h"
#include "host/rendercore/submit/submit_text.h"
#include "json/read_object.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

namespace {

QString EngineName(const QString& engine)
{
    if (engine == QLatin1String("BLENDER_EEVEE"))
        return QStringLiteral("Eevee");
    return engine == QLatin1String("BLENDER_WORKBENCH") ? QStringLiteral("Workbench") : engine;
}

class BlenderAnalysis
{
public:
    BlenderAnalysis(const QString& scene, const BytesRead& onBytes)
        : m_folder(QFileInfo(scene).path())
        , m_onBytes(onBytes)
        , m_listing(onBytes)
    {
        Add(scene);
    }

    SceneAnalysis Run(const QJsonObject& report)
    {
        if (m_result.files.isEmpty()) {
            m_result.error = SubmitText::SceneNameRefused;
            return m_result;
        }
        m_result.scene = m_result.files.constFirst().path;
        const QJsonArray files = report.value(QLatin1String("files")).toArray();
        for (const QJsonValue& file : files) {
            if (GoesOn())
                AddReference(file.toObject());
        }
        const QJsonArray folders = report.value(QLatin1String("folders")).toArray();
        for (const QJsonValue& folder : folders)
            AddFolder(folder.toString());
        const auto number = [&report](const char* key) { return report.value(QLatin1String(key)).toInt(); };
        // The farm's frames begin with 1. If the scene's begin with 0, the render script counts from 0 as well.
        const auto frame = [&report](const char* key) {
            constexpr int Farthest = 1'048'574; // from 0, in Blender
            return std::clamp(report.value(QLatin1String(key)).toInt(1), -Farthest, Farthest);
        };
        const int first = frame("first_frame");
        const int shift = std::max(0, 1 - first);
        SetFrames(m_result, first + shift, frame("last_frame") + shift);
        m_result.frameStep = std::clamp(number("frame_step"), 1, FarmNumbers::LastFrame);
        SetSize(m_result, number("width"), number("height"));
        Remark(report.value(QLatin1String("engine")).toString(), first);
        return m_result;
    }

private:
    bool GoesOn() const
    {
        return m_result.files.size() <= MostSceneFiles && m_result.missing.size() <= MostSceneFiles
            && (!m_onBytes || m_onBytes(0));
    }

    void Add(const QString& source)
    {
        if (m_seen.contains(source))
            return;
        m_seen.insert(source);
        const QString path = source.mid(1); // without the slash of the root
        if (!IsSendablePath(path)) {
            m_result.missing.append(source);
            return;
        }
        m_result.files.append({path, source});
        if (!LiesIn(m_folder, source))
            m_result.outside.append(source);
    }

    void AddReference(const QJsonObject& file)
    {
        const QString reference = file.value(QLatin1String("path")).toString();
        const QString path = QDir::cleanPath(reference);
        const QStringList found = QDir::isAbsolutePath(path)
            ? FilesLike(path, file.value(QLatin1String("pattern")).toString())
            : QStringList();
        for (const QString& source : found) {
            if (GoesOn())
                Add(source);
        }
        const QString name = file.value(QLatin1String("name")).toString(reference);
        if (found.isEmpty() && !m_result.missing.contains(name))
            m_result.missing.append(name);
    }

    QStringList FilesLike(const QString& path, const QString& pattern)
    {
        QStringList found;
        const QFileInfo file(path);
        if (!pattern.isEmpty())
            found = m_listing.Matching(
                file.path(), FilePattern(file.fileName(), pattern == QLatin1String("sequence")));
        const QString itself = FirstReadable({path});
        if (!itself.isEmpty() && !found.contains(itself))
            found.prepend(itself);
        return found;
    }

    void AddFolder(const QString& folder)
    {
        if (!QDir::isAbsolutePath(folder))
            return;
        QDirIterator files(QDir::cleanPath(folder), QDir::Files, QDirIterator::Subdirectories);
        while (GoesOn() && files.hasNext())
            Add(files.next());
    }

    /// Adds remarks on differences between the farm's rendering and the scene.
    void Remark(const QString& engine, int firstFrame)
    {
        if (!engine.isEmpty() && engine != QLatin1String("CYCLES"))
            m_result.remarks.append(TaskMessage(SubmitText::OtherEngine, {EngineName(engine)}));
        if (firstFrame < 1)
            m_result.remarks.append(TaskMessage(SubmitText::CountedFromOne, {QString::number(firstFrame)}));
    }

    QString m_folder;
    const BytesRead& m_onBytes;
    FolderListing m_listing;
    SceneAnalysis m_result;
    QSet<QString> m_seen;
};

} // namespace

QStringList BlenderArguments(const QString& scene, const QString& report)
{
    return {QStringLiteral("--background"), QStringLiteral("--factory-startup"),
        QStringLiteral("--disable-autoexec"), QStringLiteral("--python-expr"),
        QString::fromUtf8(BlenderReportScript), QStringLiteral("--"), scene, report};
}

SceneAnalysis AnalyseBlenderScene(const QString& scene, const QByteArray& report, const BytesRead& onBytes)
{
    const JsonRead read = ReadJsonObject(report);
    const QJsonValue error = read.object.value(QLatin1String("error"));
    if (read.fault == nullptr && error.isUndefined())
        return BlenderAnalysis(scene, onBytes).Run(read.object);
    SceneAnalysis analysis;
    analysis.error = TaskMessage::Lines({SubmitText::BlenderFailed, error.toString()});
    return analysis;
}
