#pragma once

#include <ostream>

#include "reader/backend/OruLayers.h"
#include "text/TableText.h"

namespace zeb::profiling {

/// The accelerator's table, a row for each ORU layer, for the console and for CSV. CSV fields are never
/// quoted.
/// @param internalColumns whether the columns for the backend's own people are shown too
void printOruLayerStats(std::ostream& out, const OruLayers& layers, bool internalColumns,
                        Alignment alignment);
void writeOruLayerCsv(std::ostream& out, const OruLayers& layers, bool internalColumns);

}  // namespace zeb::profiling
