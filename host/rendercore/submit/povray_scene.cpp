#include "host/rendercore/submit/povray_scene.h"

#include "host/rendercore/submit/povray_lexer.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr qint64 BlockBytes = 1024LL * 1024;
constexpr qint64 LongestOptionLine = 4096;           // bytes
constexpr qint64 LongestOptionsFile = 1024LL * 1024; // bytes

// Files that come with POV-Ray, for machines on which it is not installed.
constexpr std::array StandardNames {"arrays.inc", "chars.inc", "colors.inc", "consts.inc", "crystal.ttf",
    "cyrvetic.ttf", "debug.inc", "finish.inc", "functions.inc", "glass.inc", "glass_old.inc", "golds.inc",
    "ior.inc", "logo.inc", "makegrass.inc", "math.inc", "meshmaker.inc", "metals.inc", "povlogo.ttf",
    "rad_def.inc", "rand.inc", "screen.inc", "shapes.inc", "shapes2.inc", "shapes3.inc", "shapes_old.inc",
    "shapesq.inc", "skies.inc", "stage1.inc", "stars.inc", "stdcam.inc", "stdinc.inc", "stoneold.inc",
    "stones.inc", "stones1.inc", "stones2.inc", "strings.inc", "sunpos.inc", "textures.inc", "timrom.ttf",
    "transforms.inc", "woodmaps.inc", "woods.inc"};

bool IsStandard(const QString& reference)
{
    static const QStringList installed
        = QDir(QStringLiteral("/usr/share")).entryList({QStringLiteral("povray-*")}, QDir::Dirs);
    return std::any_of(StandardNames.begin(), StandardNames.end(), [&reference](const char* name) {
        return reference == QLatin1String(name);
    }) || std::any_of(installed.cbegin(), installed.cend(), [&reference](const QString& version) {
        return QFileInfo(QStringLiteral("/usr/share/%1/include/%2").arg(version, reference)).isFile();
    });
}

int CountOfClimbs(const QString& cleanPath)
{
    int climbs = 0;
    while (cleanPath.midRef(climbs * 3).startsWith(QLatin1String("../")))
        ++climbs;
    return climbs;
}

class PovRayAnalysis
{
public:
    PovRayAnalysis(const QString& scene, const BytesRead& onBytes)
        : m_scene(scene)
        , m_folder(QFileInfo(scene).path())
        , m_onBytes(onBytes)
    {
    }

    SceneAnalysis Run()
    {
        Add(QFileInfo(m_scene).fileName(), m_scene);
        m_texts.append(m_scene);
        // The list grows during the loop.
        for (int text = 0; text < m_texts.size() && m_result.files.size() <= MostSceneFiles; ++text) {
            if (!ReadText(QString(m_texts.at(text))))
                return m_result;
        }
        PlaceFiles();
        return m_result;
    }

private:
    void Add(const QString& path, const QString& source)
    {
        m_result.files.append({path, source});
        m_seen.insert(path);
    }

    bool ReadText(const QString& text)
    {
        QFile file(text);
        if (!file.open(QIODevice::ReadOnly)) {
            m_result.error = {SubmitText::PartUnreadable, {text}};
            return false;
        }
        const QString folder = QFileInfo(text).path();
        PovRayLexer lexer([this, &folder](PovRayLexer::Kind kind, const QString& reference) {
            AddReference(kind, reference, folder);
        });
        for (;;) {
            const QByteArray block = file.read(BlockBytes);
            if (block.isEmpty())
                break;
            lexer.Feed(block);
            if (m_onBytes && !m_onBytes(block.size()))
                return false;
        }
        // The lexer reports a word at its end, so the last one needs a separator.
        lexer.Feed("\n");
        return true;
    }

    void AddReference(PovRayLexer::Kind kind, const QString& reference, const QString& folder)
    {
        const QString path = QDir::cleanPath(reference);
        if (m_seen.contains(path) || m_result.files.size() > MostSceneFiles
            || m_result.missing.size() + m_result.absolute.size() > MostSceneFiles
            || (m_onBytes && !m_onBytes(0)))
            return;
        // The same name may lead to a file from the folder of another text.
        const QString attempt = folder + QLatin1Char('\n') + path;
        if (m_attempts.contains(attempt))
            return;
        m_attempts.insert(attempt);
        const QString source
            = FirstReadable({m_folder.absoluteFilePath(path), QDir(folder).absoluteFilePath(path)});
        if (source.isEmpty() && IsStandard(path)) {
            m_seen.insert(path);
            return;
        }
        const int depth = m_folder.path().split(QLatin1Char('/'), Qt::SkipEmptyParts).size();
        const bool isAbsolute = QDir::isAbsolutePath(path);
        if (source.isEmpty() || isAbsolute || !IsSendablePath(path) || CountOfClimbs(path) >= depth) {
            QStringList& list = isAbsolute ? m_result.absolute : m_result.missing;
            if (!list.contains(reference))
                list.append(reference);
            return;
        }
        // An earlier text may not have found the file from its own folder.
        m_result.missing.removeAll(reference);
        Add(path, source);
        if (!LiesIn(m_folder.path(), source))
            m_result.outside.append(source);
        if (kind == PovRayLexer::Kind::Include)
            m_texts.append(source);
    }

    /// Rebases the paths from the scene's folder to the topmost folder that one of them climbs to. Only then are "leaf.png"
    /// and "../project/leaf.png" seen to be one file.
    void PlaceFiles()
    {
        int climbs = 0;
        for (const SceneFile& file : qAsConst(m_result.files))
            climbs = std::max(climbs, CountOfClimbs(file.path));
        const QStringList folders = m_folder.path().split(QLatin1Char('/'), Qt::SkipEmptyParts);
        const QString prefix = QStringList(folders.mid(folders.size() - climbs)).join(QLatin1Char('/'));
        QSet<QString> paths;
        QVector<SceneFile> placed;
        for (SceneFile& file : m_result.files) {
            if (climbs > 0)
                file.path = QDir::cleanPath(prefix + QLatin1Char('/') + file.path);
            if (!paths.contains(file.path))
                placed.append(file);
            paths.insert(file.path);
        }
        m_result.files = placed;
        m_result.scene = m_result.files.constFirst().path;
    }

    QString m_scene;
    QDir m_folder;
    const BytesRead& m_onBytes;
    SceneAnalysis m_result;
    QStringList m_texts;
    QSet<QString> m_seen;     // cleaned references, relative to the scene's folder
    QSet<QString> m_attempts; // folders of texts with references that have been looked for from there
};

/// Reads size and frames from the options file beside the scene, if there is one.
void ReadOptions(const QString& scene, SceneAnalysis& analysis)
{
    const QFileInfo file(scene);
    QFile options(file.dir().filePath(file.completeBaseName() + QLatin1String(".ini")));
    if (!options.open(QIODevice::ReadOnly))
        return;
    std::optional<int> first;
    std::optional<int> last;
    while (!options.atEnd() && options.pos() < LongestOptionsFile) {
        const QString line
            = QString::fromUtf8(options.readLine(LongestOptionLine)).section(QLatin1Char(';'), 0, 0);
        const QString key = line.section(QLatin1Char('='), 0, 0).trimmed().toLower();
        bool isNumber = false;
        const int value = line.section(QLatin1Char('='), 1).trimmed().toInt(&isNumber);
        if (!isNumber)
            continue;
        if (key == QLatin1String("width"))
            SetSize(analysis, value, analysis.height);
        else if (key == QLatin1String("height"))
            SetSize(analysis, analysis.width, value);
        else if (key == QLatin1String("initial_frame"))
            first = value;
        else if (key == QLatin1String("final_frame"))
            last = value;
    }
    if (first || last)
        SetFrames(analysis, first.value_or(1), last.value_or(first.value_or(1)));
}

} // namespace

SceneAnalysis AnalysePovRayScene(const QString& scene, const BytesRead& onBytes)
{
    SceneAnalysis analysis = PovRayAnalysis(scene, onBytes).Run();
    ReadOptions(scene, analysis);
    return analysis;
}
