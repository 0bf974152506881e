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
/// @param nameWidth width of the names' column
void printZebLayerStats(std::ostream& out, const std::vector<ZebLayer>& layers, const TimeShare& share,
                        std::size_t nameWidth, Alignment alignment);
void writeZebLayerCsv(std::ostream& out, const std::vector<ZebLayer>& layers, const TimeShare& share);

/// The ORU layers of each ZEB layer.
/// @param nameWidth length of the longest name
void printLayerMapping(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth,
                       Alignment alignment);
void writeLayerMappingCsv(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth);

/// @return width of the names' column of a report whose log has no node mapping
std::size_t defaultNameWidth();

}  // namespace zeb::profiling
