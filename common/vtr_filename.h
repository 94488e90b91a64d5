#pragma once

#include <QString>

/// A name from outside made safe as part of a file name: every character that cannot stand in one (separators,
/// `:*?"<>|`, control characters) is percent-encoded, also a name of dots only. Other names are unchanged.
QString VTFileNamePart(const QString& strName);

/// Path of an account's file in a folder beside the program: "<program>/<folder>/<server>_<user>.ini".
QString VTAccountFile(const QString& strFolder, const QString& strServer, const QString& strUserName);

/// Creates an empty file, and its folder, unless it exists. Content that is there is left alone.
/// @return whether the file exists afterwards.
bool VTEnsureFile(const QString& strPath);
