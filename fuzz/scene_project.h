#pragma once

#include "fuzz/fuzz_support.h"
#include "host/rendercore/submit/scene_contents.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>

/// A folder "project" with pictures that scenes may refer to; one lies beside it.
class SceneProject
{
public:
    SceneProject()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("project/maps"));
        for (const char* name : {"leaf.png", "maps/leaf.1001.png", "maps/leaf.1002.png", "../beside.png"})
            WriteFile(Path(QLatin1String(name)), {});
    }

    QString Path(const QString& name) const { return m_folder.filePath(QStringLiteral("project/") + name); }

    /// Checks the rules that the farm and the user rely on.
    void RequireValid(const SceneAnalysis& analysis) const
    {
        Require(analysis.error.IsEmpty(), "the scene can be read");
        Require(analysis.scene == analysis.files.constFirst().path, "the scene is the first file");
        QSet<QString> paths;
        for (const SceneFile& file : analysis.files) {
            Require(IsSendablePath(file.path) && QDir::isRelativePath(file.path)
                    && !QStringLiteral("/%1/").arg(file.path).contains(QLatin1String("/../")),
                "the farm accepts each path");
            Require(!paths.contains(file.path), "no path appears twice");
            paths.insert(file.path);
            Require(
                LiesIn(QDir(Path({})).canonicalPath(), file.source) || analysis.outside.contains(file.source),
                "files outside the project are reported");
        }
    }

private:
    QTemporaryDir m_folder;
};
