#pragma once

#include "common/vtr_columns.h"
#include "common/vtr_jobrecord.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>

/// Text, data and plain-text tool tip of one cell.
struct VTCell
{
    QString strText;
    QVariant varData;
    QString strTip;
    bool bCheckable = false;
    Qt::CheckState checkState = Qt::Unchecked; ///< for a checkable cell only
};

/// The cells of a job's row. The cell of the Progress column is unused: the record's percentage is shown by a bar.
using VTJobRow = std::array<VTCell, VTColumnCount>;
VTJobRow VTMakeJobRow(const VTJobRecord& job, const QMap<int, QString>& mapStatus);

/// Translated captions of the six columns.
QStringList VTJobHeaders();
