#pragma once

#include <QMetaType>
#include <QVariantHash>

/// Request map of the communication service as it travels through string-based connections.
typedef QVariantHash VTParameters; // NOLINT(modernize-use-using)

/// Registers the meta-type under the name "VTParameters", by which signatures of signals and slots know it. Further
/// calls do nothing.
void RegisterVTParameters();
