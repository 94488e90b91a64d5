#include "host/rendercore/submit/maya_scene.h"

#include "host/rendercore/submit/file_pattern.h"
#include "host/rendercore/submit/folder_listing.h"
#include "host/rendercore/submit/maya_attributes.h"
#include "host/rendercore/submit/maya_statements.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr qint64 BlockBytes = 1024LL * 1024;

// Flags of setAttr that take no value.
constexpr std::array SingleFlags {"-av", "-alteredValue"};

bool IsSingleFlag(const MayaWords& words, int index)
{
    return std::any_of(
        SingleFlags.begin(), SingleFlags.end(), [&](const char* flag) { return words.Is(index, flag); });
}

/// The index of the attribute's name in a setAttr statement.
int IndexOfName(const MayaWords& words)
{
    int index = 1;
    while (words.StartsWith(index, '-'))
        index += IsSingleFlag(words, index) ? 1 : 2;
    return index;
}

/// The last part of an attribute's name, without index: "fileName" of ".layers[2].fileName".
QString PlainName(const QString& attribute)
{
    return attribute.section(QLatin1Char('.'), -1).section(QLatin1Char('['), 0, 0);
}

/// The values of a setAttr statement whose attribute's name has this index.
QStringList TextValues(const MayaWords& words, int name)
{
    QStringList values;
    const bool hasType = words.Is(name + 1, "-type");
    const bool isArray = hasType && words.Is(name + 2, "stringArray");
    if (hasType && !isArray && !words.Is(name + 2, "string"))
        return values;
    // An array begins with its size.
    for (int index = name + (isArray ? 4 : hasType ? 3 : 1); index < words.Count(); ++index)
        values.append(words.Text(index));
    return values;
}

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
        , m_listing(onBytes)
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
    /// The node that is being read.
    struct Node
    {
        QString type; ///< or the name of a node that is there already
        QStringList files;
        QStringList possibleFiles;
        bool isSequence = false;
    };

    bool GoesOn() const { return !m_onBytes || m_onBytes(0); }

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
        if (source != m_scene && !LiesIn(m_root.path(), source))
            m_result.outside.append(source);
        if (IsMayaText(source))
            m_texts.append(source);
    }

    bool ReadText(const QString& text)
    {
        QFile file(text);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            m_result.error = {SubmitText::PartUnreadable, {text}};
            return false;
        }
        m_node = Node();
        const bool isScene = text == m_scene;
        MayaStatements statements(
            [this, isScene](const MayaWords& words) { HandleStatement(words, isScene); });
        for (;;) {
            const QByteArray block = file.read(BlockBytes);
            if (block.isEmpty())
                break;
            statements.Feed(block);
            if (m_onBytes && !m_onBytes(block.size()))
                return false;
        }
        EndNode();
        return true;
    }

    void HandleStatement(const MayaWords& words, bool isScene)
    {
        if (words.Is(0, "setAttr")) {
            HandleAttribute(words, isScene);
        } else if (words.Is(0, "createNode") || words.Is(0, "select")) {
            EndNode();
            m_node.type = words.Is(0, "select") ? words.Last() : words.Text(1);
        } else if (words.Is(0, "file") && words.Count() > 1) {
            AddScene(words.Last());
        }
    }

    /// A second reference to the same scene ends with a number in braces.
    void AddScene(QString reference)
    {
        const int brace = reference.lastIndexOf(QLatin1Char('{'));
        if (brace >= 0 && reference.endsWith(QLatin1Char('}')))
            reference.truncate(brace);
        AddReference(reference, false, true);
    }

    void HandleAttribute(const MayaWords& words, bool isScene)
    {
        const int index = IndexOfName(words);
        const QString name = PlainName(words.Text(index));
        if (words.Is(index + 2, "dataReferenceEdits"))
            HandleEdits(words, index + 3);
        if (name == QLatin1String("ufe") || name == QLatin1String("useFrameExtension"))
            m_node.isSequence = words.Is(index + 1, "yes") || words.Is(index + 1, "1");
        const MayaAttributes::Kind kind = MayaAttributes::KindOf(m_node.type, name);
        if (kind == MayaAttributes::Kind::File)
            m_node.files += TextValues(words, index);
        else if (kind == MayaAttributes::Kind::Possible)
            m_node.possibleFiles += TextValues(words, index);
        else if (isScene && m_node.type == QLatin1String(":defaultRenderGlobals"))
            ReadFrames(name, words.Last());
        else if (isScene && m_node.type == QLatin1String(":defaultResolution"))
            ReadSize(name, words.Last());
    }

    /// Changes to a referenced scene look like this: 2 "node" "attribute" " -type \"string\" \"value\"".
    void HandleEdits(const MayaWords& words, int from)
    {
        for (int index = from; index + 3 < words.Count(); ++index) {
            if (!words.Is(index, "2"))
                continue;
            const QString name = PlainName(words.Text(index + 2));
            const QString change = words.Text(index + 3);
            if (MayaAttributes::KindOf({}, name) != MayaAttributes::Kind::Other
                && change.startsWith(QLatin1String(" -type \"string\"")))
                m_node.possibleFiles.append(change.section(QLatin1Char('"'), -2, -2));
        }
    }

    // The job's frames and size are those of the scene itself, not of referenced scenes.
    void ReadFrames(const QString& name, const QString& value)
    {
        if (name == QLatin1String("fs"))
            m_firstFrame = static_cast<int>(value.toDouble());
        else if (name == QLatin1String("ef"))
            m_lastFrame = static_cast<int>(value.toDouble());
    }

    void ReadSize(const QString& name, const QString& value)
    {
        if (name == QLatin1String("w"))
            m_width = value.toInt();
        else if (name == QLatin1String("h"))
            m_height = value.toInt();
    }

    /// A switch for sequences may follow the name of the file.
    void EndNode()
    {
        const Node node = std::exchange(m_node, Node());
        for (const QString& file : node.files)
            AddReference(file, node.isSequence, true);
        for (const QString& file : node.possibleFiles) {
            if (MayaAttributes::IsFileName(file))
                AddReference(file, node.isSequence, false);
        }
    }

    /// @param mustExist whether a reference that leads nowhere is missing for certain.
    void AddReference(const QString& reference, bool isSequence, bool mustExist)
    {
        if (reference.isEmpty() || m_seen.contains(reference) || !GoesOn())
            return;
        if (m_seen.size() > MostSceneFiles) {
            m_result.error = TooManyFiles();
            return;
        }
        m_seen.insert(reference);
        const QStringList candidates = Candidates(reference);
        for (const QString& candidate : candidates) {
            const QStringList found = FilesLike(candidate, isSequence);
            for (const QString& file : found) {
                if (m_result.files.size() <= MostSceneFiles && GoesOn())
                    Add(file);
            }
            if (!found.isEmpty())
                return;
        }
        if (mustExist || reference.contains(QLatin1Char('/')))
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

    /// The file itself, if it exists, and all files that match the tokens in its name.
    QStringList FilesLike(const QString& path, bool isSequence)
    {
        const QFileInfo file(QDir::cleanPath(path));
        const FilePattern pattern(file.fileName(), isSequence);
        QStringList found
            = pattern.HasTokens() ? m_listing.Matching(file.absolutePath(), pattern) : QStringList();
        const QString itself = FirstReadable({file.filePath()});
        if (!itself.isEmpty() && !found.contains(itself))
            found.prepend(itself);
        return found;
    }

    QString m_scene;
    QDir m_sceneFolder;
    QDir m_root;
    const BytesRead& m_onBytes;
    FolderListing m_listing;
    SceneAnalysis m_result;
    QStringList m_texts;
    QSet<QString> m_sources;
    QSet<QString> m_seen; // references
    Node m_node;          // the one that the attributes belong to
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
