#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The network of the sample: an image classifier of depthwise and pointwise convolutions, as the framework
/// knows it (ZEB layers) and as the accelerator runs it (ORU layers).
namespace zeb::samplelog {

/// Types of ORU layers, by their number in the layer configuration.
enum class OruLayerType : std::uint32_t {
    reshape = 7,
    quantize = 15,
    softmax = 32,
    superConv = 75,
    superGemm = 76,
    superAvgPool = 81,
    cacheOp = 85,
    layoutPad = 88,
    layoutSlice = 89,
};

/// One unit of work of the accelerator.
struct OruLayer {
    OruLayerType type = OruLayerType::reshape;
    bool offloaded = false;         ///< to the Krel core, else it runs on the DSP
    std::uint32_t mergedGroup = 0;  ///< 0: not linked
    bool startsGroup = true;        ///< of a linked layer: the one that is counted for the group
    bool loopback = false;          ///< takes its input from the core's own memory
    std::uint32_t schedule = 0;     ///< place in the order of execution
    std::uint64_t cycles = 0;       ///< of the core or the DSP, for one execution
    std::uint32_t nodeCount = 0;    ///< pieces that an offloaded layer is cut into
    std::uint32_t zebLayer = 0;     ///< index of the layer that it works for
    std::optional<std::uint32_t> alsoForZebLayer;

    [[nodiscard]] bool linked() const { return mergedGroup != 0; }
};

struct Network {
    std::vector<std::string> zebLayerNames;
    std::vector<OruLayer> oruLayers;
    std::uint64_t inputBytes = 0;   ///< of the tensor that an execution takes
    std::uint64_t outputBytes = 0;  ///< of the tensor that it gives
};

/// ZEB layers of the network as it was designed.
inline constexpr std::uint32_t designedLayerCount = 32;

/// @param zebLayerCount at least 1. A smaller network ends early or lacks blocks at its end; a larger one has
/// further and wider blocks in its middle, each of about four ORU layers to a ZEB layer.
Network makeNetwork(std::uint32_t zebLayerCount);

}  // namespace zeb::samplelog
