#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

#include "reader/backend/LayerStats.h"
#include "reader/backend/ZebLayers.h"

/// The per-layer tables, each printed for the console and for CSV from the same rows. Fields of the console
/// take the stream's current alignment, filled with blanks; a longer text is not cut. CSV fields are never
/// quoted.
namespace zeb::profiling {

/// The accelerator's table, a row for each ORU layer.
class OruTable {
public:
    /// @param internalColumns whether the columns for the backend's own people are shown too
    /// @param layerStats has to outlive the table
    /// @param layerCount number of layers by the layer configuration; those that have figures become rows
    OruTable(bool internalColumns, const LayerStatsList& layerStats, std::uint32_t layerCount);

    void printOruLayerStats(std::ostream& out) const;
    void writeOruLayerCsv(std::ostream& out) const;

private:
    template <typename PrintRow>
    void forEachRow(PrintRow printRow) const;

    bool internalColumns_;
    const LayerStatsList& layerStats_;
    std::vector<std::uint32_t> oruRowOrder_;  ///< the rows' positions among the layers, in report order
};

/// The framework's table, a row for each ZEB layer and a summary.
/// @param nameWidth width of the names' column
void printZebLayerStats(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth);
void writeZebLayerCsv(std::ostream& out, const std::vector<ZebLayer>& layers);

/// The ORU layers of each ZEB layer.
/// @param nameWidth length of the longest name
void printLayerMapping(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth);
void writeLayerMappingCsv(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth);

/// @return width of the names' column of a report whose log has no node mapping
std::size_t defaultNameWidth();

}  // namespace zeb::profiling
