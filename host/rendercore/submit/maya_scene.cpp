#include "host/rendercore/submit/maya_scene.h"

#include "host/rendercore/submit/maya_statements.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <utility>

namespace {

constexpr qint64 BlockBytes = 1024LL * 1024;

/// The nearest project folder above the scene; null when there is none.
QString ProjectFolder(const QString& scene)
{
    QDir folder(QFileInfo(scene).path());
    do {
        if (folder.exists(QStringLiteral("workspace.mel")))
            return folder.path();
    } while (folder.cdUp());
    return {};
}

bool IsMayaText(const QString& file)
{
    return QFileInfo(file).suffix().compare(QLatin1String("ma"), Qt::CaseInsensitive) == 0;
}

class MayaAnalysis
{
public:
    MayaAnalysis(const QString& scene, const BytesRead& onBytes)
        : m_scene(scene)
        , m_sceneFolder(QFileInfo(scene).path())
        , m_onBytes(onBytes)
    {
        const QString project = ProjectFolder(scene);
        m_root.setPath(project.isEmpty() ? m_sceneFolder.path() : project);
    }

    SceneAnalysis Run()
    {
        Add(m_scene);
        m_result.scene = m_result.files.constFirst().path;
        // The list grows during the loop.
        for (int text = 0; text < m_texts.size() && m_result.files.size() <= MostSceneFiles; ++text) {
            if (!ReadText(QString(m_texts.at(text))))
                return m_result;
        }
        SetFrames(m_result, m_firstFrame, m_lastFrame);
        SetSize(m_result, m_width, m_height);
        return m_result;
    }

private:
    void Add(const QString& source)
    {
        if (m_sources.contains(source))
            return;
        m_sources.insert(source);
        QString path = m_root.relativeFilePath(source);
        if (path.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(path))
            path = QLatin1String("external") + QDir::cleanPath(source);
        if (!IsSendablePath(path)) {
            m_result.missing.append(source);
            return;
        }
        m_result.files.append({path, source});
        if (IsMayaText(source))
            m_texts.append(source);
    }

    bool ReadText(const QString& text)
    {
        QFile file(text);
        if (!file.open(QIODevice::ReadOnly)) {
            m_result.error = QStringLiteral("A file of the scene cannot be read: %1").arg(text);
            return false;
        }
        m_node.clear();
        const bool isScene = text == m_scene;
        MayaStatements statements(
            [this, isScene](const QStringList& words) { HandleStatement(words, isScene); });
        for (;;) {
            const QByteArray block = file.read(BlockBytes);
            if (block.isEmpty())
                return true;
            statements.Feed(block);
            if (m_onBytes && !m_onBytes(block.size()))
                return false;
        }
    }

    void HandleStatement(const QStringList& words, bool isScene)
    {
        const QString& command = words.constFirst();
        const QString& last = words.constLast();
        if (command == QLatin1String("file") && words.size() > 1)
            AddScene(last);
        else if ((command == QLatin1String("createNode") || command == QLatin1String("select"))
            && words.size() > 1)
            m_node = command == QLatin1String("select") ? last : words.at(1);
        else if (command == QLatin1String("setAttr") && words.size() > 2)
            HandleAttribute(words.at(1) == QLatin1String("-k") ? words.value(3) : words.at(1), last, isScene);
    }

    /// A second reference to the same scene ends with a number in braces.
    void AddScene(QString reference)
    {
        static const QRegularExpression copyNumber(QStringLiteral("\\{\\d+\\}$"));
        reference.remove(copyNumber);
        AddReference(reference);
    }

    void HandleAttribute(const QString& name, const QString& value, bool isScene)
    {
        if (name == QLatin1String(".ftn") || name == QLatin1String(".fileTextureName")) {
            AddReference(value);
            return;
        }
        // The job's frames and size are those of the scene itself, not of referenced scenes.
        if (!isScene)
            return;
        if (m_node == QLatin1String(":defaultRenderGlobals")) {
            if (name == QLatin1String(".fs"))
                m_firstFrame = static_cast<int>(value.toDouble());
            else if (name == QLatin1String(".ef"))
                m_lastFrame = static_cast<int>(value.toDouble());
        } else if (m_node == QLatin1String(":defaultResolution")) {
            if (name == QLatin1String(".w"))
                m_width = value.toInt();
            else if (name == QLatin1String(".h"))
                m_height = value.toInt();
        }
    }

    void AddReference(const QString& reference)
    {
        if (reference.isEmpty() || m_seen.contains(reference) || m_seen.size() > MostSceneFiles)
            return;
        m_seen.insert(reference);
        for (const QString& candidate : Candidates(reference)) {
            const QStringList found = FilesLike(candidate);
            for (const QString& file : found)
                Add(file);
            if (!found.isEmpty())
                return;
        }
        m_result.missing.append(reference);
    }

    QStringList Candidates(const QString& reference) const
    {
        QStringList candidates;
        if (QDir::isAbsolutePath(reference))
            candidates.append(reference);
        // Maya marks the end of the project's folder with a double slash.
        const int mark = reference.lastIndexOf(QLatin1String("//"));
        const QString within = mark >= 0 ? reference.mid(mark + 2) : reference;
        if (!QDir::isAbsolutePath(within))
            candidates << m_root.filePath(within) << m_sceneFolder.filePath(within);
        return candidates;
    }

    /// The files that match a path with tokens, or the file itself.
    static QStringList FilesLike(const QString& path)
    {
        static const QRegularExpression token(
            QStringLiteral("<(?:udim|uvtile|u|v|f)>"), QRegularExpression::CaseInsensitiveOption);
        const QFileInfo file(QDir::cleanPath(path));
        if (!file.fileName().contains(token)) {
            const QString found = FirstReadable({file.filePath()});
            return found.isEmpty() ? QStringList() : QStringList(found);
        }
        QString pattern = QRegularExpression::escape(file.fileName());
        static const QRegularExpression escapedToken(
            QStringLiteral("\\\\<(?:udim|uvtile|u|v|f)\\\\>"), QRegularExpression::CaseInsensitiveOption);
        pattern.replace(escapedToken, QStringLiteral("-?\\d+"));
        const QRegularExpression fits(QRegularExpression::anchoredPattern(pattern));
        QStringList found;
        const QStringList names = file.dir().entryList(QDir::Files | QDir::Readable, QDir::Name);
        for (const QString& name : names) {
            if (fits.match(name).hasMatch())
                found.append(file.dir().absoluteFilePath(name));
        }
        return found;
    }

    QString m_scene;
    QDir m_sceneFolder;
    QDir m_root;
    const BytesRead& m_onBytes;
    SceneAnalysis m_result;
    QStringList m_texts;
    QSet<QString> m_sources;
    QSet<QString> m_seen; // references
    QString m_node;       // the node that the attributes belong to
    int m_firstFrame = 1;
    int m_lastFrame = 1;
    int m_width = 0;
    int m_height = 0;
};

} // namespace

SceneAnalysis AnalyseMayaScene(const QString& scene, const BytesRead& onBytes)
{
    return MayaAnalysis(scene, onBytes).Run();
}
