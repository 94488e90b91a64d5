#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace farm {

/// The fields, separated by '|', of each line of a command's output that has at least `count` of them. The last field
/// keeps further separators, so it alone may contain any text.
std::vector<QStringList> FieldsIn(const QByteArray& output, int count);

} // namespace farm
