#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reader/backend/LayerStats.h"

namespace zeb::profiling {

/// The ORU layers that a report shows, by row.
class OruLayers {
public:
    OruLayers() = default;

    /// @param layerCount number of layers by the layer configuration; those that have figures become rows
    OruLayers(LayerStatsList layerStats, std::uint32_t layerCount);

    /// @return the figures of all layers by position, those that are no row included
    [[nodiscard]] const LayerStatsList& layerStats() const { return layerStats_; }

    [[nodiscard]] std::size_t size() const { return oruRowOrder_.size(); }
    [[nodiscard]] LayerStats operator[](std::size_t row) const { return layerStats_[oruRowOrder_[row]]; }

    /// Calls with the figures of each row, in order. Rows lie far apart in memory, so what one of the next
    /// takes is on its way meanwhile; without that, the tables of many layers take 1.4 times as long on the
    /// console and 2.5 times in CSV.
    template <typename Call>
    void forEach(Call call) const {
        constexpr std::size_t ahead = 8;
        for (std::size_t row = 0; row < oruRowOrder_.size(); ++row) {
            if (row + ahead < oruRowOrder_.size()) {
                layerStats_.prefetch(oruRowOrder_[row + ahead]);
            }
            call((*this)[row]);
        }
    }

private:
    LayerStatsList layerStats_;
    std::vector<std::uint32_t> oruRowOrder_;  ///< the rows' positions among the layers, in report order
};

}  // namespace zeb::profiling
