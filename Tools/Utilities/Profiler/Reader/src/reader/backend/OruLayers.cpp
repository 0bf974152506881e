#include "reader/backend/OruLayers.h"

#include <algorithm>
#include <utility>

namespace zeb::profiling {

namespace {

using OruRowKey = std::uint64_t;

// Rows come by order key, which is the high half, then by layer id. A layer's id is also its position among
// the figures.
std::vector<std::uint32_t> rowsInOrder(const LayerStatsList& layerStats, std::size_t layerCount) {
    const std::size_t layers = std::min(layerCount, layerStats.size());
    std::vector<OruRowKey> oruRowOrder;
    oruRowOrder.reserve(layers);
    for (std::size_t position = 0; position < layers; ++position) {
        oruRowOrder.push_back(std::uint64_t{layerStats.orderKey(position)} << 32U |
                              layerStats.layerId(position));
    }
    std::sort(oruRowOrder.begin(), oruRowOrder.end());
    std::vector<std::uint32_t> rows;
    rows.reserve(layers);
    for (const OruRowKey key : oruRowOrder) {
        if (const auto layerId = static_cast<std::uint32_t>(key); layerId < layerStats.size()) {
            rows.push_back(layerId);
        }
    }
    return rows;
}

}  // namespace

OruLayers::OruLayers(LayerStatsList layerStats, std::uint32_t layerCount)
    : layerStats_(std::move(layerStats)), oruRowOrder_(rowsInOrder(layerStats_, layerCount)) {}

}  // namespace zeb::profiling
