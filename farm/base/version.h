#pragma once

#include <QString>

namespace farm {

inline QString Version()
{
    return QStringLiteral(QSFARM_VERSION);
}

} // namespace farm
