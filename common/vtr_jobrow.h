#pragma once

#include "common/vtr_codetables.h"
#include "common/vtr_jobrecord.h"

#include <QString>
#include <QVariant>

#include <array>

/// Columns of every table that lists farm jobs.
namespace VTJobColumn {
enum { Sequence, Name, StartTime, Progress, Status, Cost, Count };
}

/// What one cell shows and keeps; the tool tip is plain text.
struct VTCell
{
    QString strText;
    QVariant varData;
    QString strTip;
    bool bCheckable = false;
};

/// The cells of a job's row. The Progress column has none of its own: a bar of the record's percentage stands there.
using VTJobRow = std::array<VTCell, VTJobColumn::Count>;
VTJobRow VTMakeJobRow(const VTJobRecord& job, const QMap<int, QString>& mapStatus);

/// Translated captions of the six columns.
QStringList VTJobHeaders();
