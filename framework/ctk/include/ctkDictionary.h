#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

using ctkProperties = QHash<QString, QVariant>;
using ctkDictionary = ctkProperties;
