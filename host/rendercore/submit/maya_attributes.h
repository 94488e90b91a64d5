#pragma once

#include <QString>

/// The attributes in which Maya nodes keep names of files.
namespace MayaAttributes {

enum class Kind {
    Other,
    File,    ///< always names a file
    Possible ///< its name suggests a file: plug-ins add nodes that cannot all be listed here
};

/// @param node is the node's type.
/// @param attribute the last part of its name, short or long, without index.
Kind KindOf(const QString& node, const QString& attribute);

/// Whether the value of a possible file attribute has the form of a file name.
bool IsFileName(const QString& value);

} // namespace MayaAttributes
