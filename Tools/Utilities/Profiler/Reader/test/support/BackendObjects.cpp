#include "support/BackendObjects.h"

namespace zeb::test {

using samplelog::Bytes;

namespace {

std::uint32_t countOf(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

}  // namespace

void put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t index = 0; index < 4; ++index, value >>= 8U) {
        bytes.at(at + index) = static_cast<std::uint8_t>(value & 0xFFU);
    }
}

void put64(Bytes& bytes, std::size_t at, std::uint64_t value) {
    put32(bytes, at, static_cast<std::uint32_t>(value & 0xFFFF'FFFFU));
    put32(bytes, at + 4, static_cast<std::uint32_t>(value >> 32U));
}

Bytes layerConfigObject(std::uint32_t krelHz, std::uint32_t dspHz, const std::vector<Layer>& layers) {
    Bytes object(16 + 16 * layers.size());
    put32(object, 0, krelHz);
    put32(object, 4, dspHz);
    put32(object, 8, countOf(layers.size()));
    std::size_t at = 16;
    for (const Layer& layer : layers) {
        put32(object, at, layer.id);
        put32(object, at + 4, layer.type);
        put32(object, at + 8, layer.flags);
        put32(object, at + 12, layer.group);
        at += 16;
    }
    return object;
}

Bytes graphProfileObject(const ProfileTotals& totals, const std::vector<Layer>& layers) {
    Bytes object(80 + 88 * layers.size());
    put64(object, 16, totals.acceleratorUs);
    put32(object, 56, totals.executions);
    put32(object, 64, countOf(layers.size()));
    put64(object, 72, totals.dspGraphUs);
    std::size_t at = 80;
    for (const Layer& layer : layers) {
        put32(object, at + 8, layer.execCount);
        put32(object, at + 12, layer.orderKey);
        put64(object, at + 32, layer.timeUs);
        put64(object, at + 56, layer.dspCycles);
        put64(object, at + 64, layer.coreCycles);
        at += 88;
    }
    return object;
}

Bytes nodeMappingObject(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries) {
    Bytes object(4 + 12 * entries.size());
    put32(object, 0, countOf(entries.size()));
    std::size_t at = 4;
    for (const auto& [layerId, nameIndex] : entries) {
        put32(object, at, layerId);
        put32(object, at + 4, 1);
        put32(object, at + 8, nameIndex);
        at += 12;
    }
    return object;
}

Bytes nodeNamesObject(const std::vector<std::string>& names) {
    Bytes object(4 + 8 * names.size());
    put32(object, 0, countOf(names.size()));
    for (std::size_t index = 0; index < names.size(); ++index) {
        put64(object, 4 + 8 * index, std::uint64_t{object.size()} << 32U | 0xABCDU);
        object.insert(object.end(), names[index].c_str(), names[index].c_str() + names[index].size() + 1);
    }
    return object;
}

}  // namespace zeb::test
