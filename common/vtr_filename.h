#pragma once

#include <QString>

/// Makes a name from outside safe as part of a file name: characters that file names cannot contain (separators,
/// `:*?"<>|`, control characters) are percent-encoded, and so is a name of dots only. Other names are unchanged.
QString VTFileNamePart(const QString& strName);

/// Path of an account's file in a folder beside the program: "<program>/<folder>/<server>_<user>.ini".
QString VTAccountFile(const QString& strFolder, const QString& strServer, const QString& strUserName);

/// Creates an empty file that only its owner may read, and its folder, unless the file exists. An existing one is left
/// alone.
/// @return whether the file exists afterwards.
bool VTEnsureFile(const QString& strPath);
