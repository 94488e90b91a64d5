#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

using ManifestHeaders = QHash<QString, QString>;

/// Reads the main section of a manifest: `Name: value` lines in UTF-8 that end with LF or CRLF, up to the first empty
/// line. A line that begins with a blank continues the one before. Throws `ctkPluginException` (`MANIFEST_ERROR`) for
/// any other line, and when Plugin-SymbolicName is missing or empty.
ManifestHeaders ParseManifest(const QByteArray& text);

/// Plugin-SymbolicName without its directives.
QString SymbolicName(const ManifestHeaders& headers);

/// The folder that holds the manifest in a library's resources: the file's base name without the prefix "lib" and with
/// dots for underscores.
QString ResourceFolder(const QString& libraryFile);
