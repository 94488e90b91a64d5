#pragma once

#include <QMetaType>
#include <QVariantHash>

/// Request map of the communication service as it travels through string-based connections.
typedef QVariantHash VTParameters; // NOLINT(modernize-use-using)

/// Registers the meta-type under the name "VTParameters", as the signatures of signals and slots spell it. Further
/// calls do nothing.
void RegisterVTParameters();
