#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

using ManifestHeaders = QHash<QString, QString>;

/// Reads the main section of a manifest: `Name: value` lines in UTF-8 ended by LF or CRLF, a line that begins with a
/// blank continuing the one before, up to the first empty line. Throws ctkPluginException (MANIFEST_ERROR) for a line
/// that is neither and where Plugin-SymbolicName is missing or empty.
ManifestHeaders ParseManifest(const QByteArray& text);

/// Plugin-SymbolicName without its directives.
QString SymbolicName(const ManifestHeaders& headers);

/// The folder that a library's resources have their manifest in: the file's base name without the prefix "lib", each
/// underscore a dot.
QString ResourceFolder(const QString& libraryFile);
