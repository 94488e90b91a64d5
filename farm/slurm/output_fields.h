#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace farm {

/// The fields of a command's output, which '|' separates, for each line that has at least so many. The last field keeps
/// further separators, so only this one may hold any text.
std::vector<QStringList> FieldsIn(const QByteArray& output, int count);

} // namespace farm
