#include "framework/ctk/plugin_manifest.h"

#include "ctkPluginException.h"

#include <QFileInfo>
#include <QList>

namespace {

[[noreturn]] void RefuseManifest(const QString& reason)
{
    throw ctkPluginException(QStringLiteral("The plugin manifest is malformed: %1").arg(reason),
        ctkPluginException::MANIFEST_ERROR);
}

/// The unfolded lines of the main section. They are joined as bytes, because a fold may split a character.
QList<QByteArray> UnfoldedLines(const QByteArray& text)
{
    QList<QByteArray> lines;
    for (QByteArray line : text.split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            break;
        if (!line.startsWith(' '))
            lines.append(line);
        else if (lines.isEmpty())
            RefuseManifest(QStringLiteral("it begins with a continuation line"));
        else
            lines.last().append(line.mid(1));
    }
    return lines;
}

} // namespace

ManifestHeaders ParseManifest(const QByteArray& text)
{
    ManifestHeaders headers;
    for (const QByteArray& line : UnfoldedLines(text)) {
        const int colon = line.indexOf(':');
        if (colon < 1)
            RefuseManifest(QStringLiteral("\"%1\" is not a header").arg(QString::fromUtf8(line)));
        headers.insert(
            QString::fromUtf8(line.left(colon)).trimmed(), QString::fromUtf8(line.mid(colon + 1)).trimmed());
    }
    if (SymbolicName(headers).isEmpty())
        RefuseManifest(QStringLiteral("Plugin-SymbolicName is missing"));
    return headers;
}

QString SymbolicName(const ManifestHeaders& headers)
{
    return headers.value(QStringLiteral("Plugin-SymbolicName")).section(QLatin1Char(';'), 0, 0).trimmed();
}

QString ResourceFolder(const QString& libraryFile)
{
    QString name = QFileInfo(libraryFile).baseName();
    if (name.startsWith(QLatin1String("lib")))
        name.remove(0, 3);
    return name.replace(QLatin1Char('_'), QLatin1Char('.'));
}
