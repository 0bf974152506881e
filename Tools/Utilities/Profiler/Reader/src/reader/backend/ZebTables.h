#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "reader/backend/ZebLayers.h"
#include "text/TableText.h"

/// The tables of the framework's layers, each printed for the console and for CSV from the same rows. Fields
/// of the console are filled with blanks; a longer text is not cut. CSV fields are never quoted.
namespace zeb::profiling {

/// The framework's table, a row for each ZEB layer, and a summary of the share.
/// @param zebLayerStats one for each layer
/// @param nameWidth width of the names' column
void printZebLayerStats(std::ostream& out, const ZebLayers& layers,
                        const std::vector<ZebLayerStats>& zebLayerStats, const TimeShare& share,
                        std::size_t nameWidth, Alignment alignment);
void writeZebLayerCsv(std::ostream& out, const ZebLayers& layers,
                      const std::vector<ZebLayerStats>& zebLayerStats, const TimeShare& share);

/// The ORU layers of each ZEB layer. Names take the width of the longest.
void printLayerMapping(std::ostream& out, const ZebLayers& layers, Alignment alignment);
void writeLayerMappingCsv(std::ostream& out, const ZebLayers& layers);

/// @return width of the names' column of a report whose log has no node mapping
std::size_t defaultNameWidth();

}  // namespace zeb::profiling
