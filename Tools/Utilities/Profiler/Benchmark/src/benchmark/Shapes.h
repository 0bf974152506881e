#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

/// The logs that are measured: each shape stresses one thing that a reader could be slow at.
namespace zeb::bench {

class ChunkedLog;

/// A family of logs that grow with one number.
struct Shape {
    std::string_view name;
    std::string_view title;  ///< for the table
    std::size_t quick;       ///< size of the large log of a quick run; the small one has a quarter of it
    std::size_t normal;      ///< the same of a normal run
    std::size_t full;        ///< the same of a full run
    std::size_t chunkLimit;  ///< a chunk ends with the message that takes it beyond that many bytes
    void (*write)(ChunkedLog& log, std::size_t size);
    bool isForReader = true;   ///< the reader is measured on it
    bool hasCopyFloor = true;  ///< plain records, each with a copy of its texts, fit into memory
    bool isForForms = false;   ///< the forms are measured on it
};

/// The shape of a backend log with per-layer data, whose reports have a floor of their own.
inline constexpr std::string_view layersShape = "layers";
/// The shape that other programs are measured on too.
inline constexpr std::string_view oneChunkShape = "one-chunk";

[[nodiscard]] std::span<const Shape> allShapes();

void writeLog(std::ostream& out, const Shape& shape, std::size_t size);

/// The figures that the layers shape gives to the ORU layer at `index`.
struct LayerFigures {
    std::uint32_t id;
    std::uint32_t type;
    bool offloaded;
    std::uint32_t orderKey;
    std::uint32_t executions;
    std::uint64_t timeUs;
    std::uint64_t dspCycles;
    std::uint64_t coreCycles;
};
[[nodiscard]] LayerFigures layerFigures(std::size_t index);

inline constexpr std::size_t oruLayersPerZebLayer = 4;
[[nodiscard]] std::string zebLayerName(std::size_t index);

}  // namespace zeb::bench
