#include "samplelog/Network.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zeb::samplelog {

namespace {

// A tensor of one byte an element.
struct Shape {
    std::uint64_t height = 0;
    std::uint64_t width = 0;
    std::uint64_t channels = 0;

    [[nodiscard]] std::uint64_t bytes() const { return height * width * channels; }
};

// A depthwise convolution and the pointwise one behind it.
struct Block {
    std::uint64_t channels = 0;  // of the pointwise output
    bool halves = false;         // the depthwise convolution has a stride of 2
};

constexpr Shape inputShape{224, 224, 3};
constexpr std::uint64_t firstChannels = 32;
constexpr std::uint64_t classCount = 1000;
constexpr std::uint64_t bytesPerFloat = 4;
constexpr std::uint64_t depthwiseTaps = 9;

constexpr Block frontBlocks[] = {{64},  {128, true}, {128}, {256, true}, {256}, {512, true},
                                 {512}, {512},       {512}, {512},       {512}};
constexpr Block rearBlocks[] = {{1024, true}, {1024}};
constexpr Block furtherBlock{1152};

constexpr std::uint32_t layersOutsideBlocks = 6;
constexpr std::uint32_t frontLayers = 2 * std::size(frontBlocks);
constexpr std::uint32_t rearLayers = 2 * std::size(rearBlocks);
static_assert(layersOutsideBlocks + frontLayers + rearLayers == designedLayerCount);

// What the accelerator gets done in a cycle.
constexpr std::uint64_t krelBytesPerCycle = 32;
constexpr std::uint64_t krelSetupCycles = 1500;
constexpr std::uint64_t firstConvolutionMacs = 432;  // few input channels leave some of the array idle
constexpr std::uint64_t depthwiseMacs = 64;          // one input channel to an output channel leaves most
constexpr std::uint64_t fullMacs = 512;
constexpr std::uint64_t dspBytesPerCycle = 32;
constexpr std::uint64_t dspSetupCycles = 1200;
constexpr std::uint64_t flushBytesPerCycle = 64;
constexpr std::uint64_t softmaxCyclesPerValue = 12;

// The core's memory: what passes on an intermediate tensor, and what weights a layer can hold.
constexpr std::uint64_t coreMemoryBytes = 262144;
constexpr std::uint64_t nodeBytes = 65536;

std::uint64_t quotientRoundedUp(std::uint64_t value, std::uint64_t divisor) {
    return (value + divisor - 1) / divisor;
}

// Work of an offloaded layer.
struct Work {
    std::uint64_t macs = 0;
    std::uint64_t macsPerCycle = fullMacs;
    std::uint64_t bytesMoved = 0;  // from and to the memory outside the core
    std::uint64_t outputBytes = 0;
};

std::uint64_t krelCycles(const Work& work) {
    const std::uint64_t computing = quotientRoundedUp(work.macs, work.macsPerCycle);
    const std::uint64_t moving = quotientRoundedUp(work.bytesMoved, krelBytesPerCycle);
    return krelSetupCycles + std::max(computing, moving);
}

std::uint64_t dspCycles(std::uint64_t bytesMoved) {
    return dspSetupCycles + quotientRoundedUp(bytesMoved, dspBytesPerCycle);
}

std::uint64_t flushCycles(std::uint64_t bytes) {
    return dspSetupCycles + quotientRoundedUp(bytes, flushBytesPerCycle);
}

class NetworkBuilder {
public:
    explicit NetworkBuilder(std::uint32_t zebLayerCount) : zebLayerCount_(zebLayerCount) {}

    Network build() {
        const std::uint32_t blockLayers =
            zebLayerCount_ > layersOutsideBlocks ? zebLayerCount_ - layersOutsideBlocks : 0;
        addInput();
        addFirstConvolution();
        addBlocks(blockLayers);
        addPooling();
        addClassifier();
        addReshape();
        addPredictions();
        return std::move(network_);
    }

private:
    // Layers beyond the number that was asked for are left out, with all that belongs to them.
    bool addZebLayer(std::string name) {
        if (network_.zebLayerNames.size() == zebLayerCount_) {
            return false;
        }
        network_.zebLayerNames.push_back(std::move(name));
        return true;
    }

    OruLayer& addOruLayer(OruLayerType type, std::uint64_t cycles) {
        OruLayer& layer = network_.oruLayers.emplace_back();
        layer.type = type;
        layer.cycles = cycles;
        layer.schedule = static_cast<std::uint32_t>(network_.oruLayers.size() - 1);
        layer.zebLayer = static_cast<std::uint32_t>(network_.zebLayerNames.size() - 1);
        return layer;
    }

    OruLayer& addOffloaded(OruLayerType type, const Work& work) {
        OruLayer& layer = addOruLayer(type, krelCycles(work));
        layer.offloaded = true;
        layer.nodeCount = static_cast<std::uint32_t>(quotientRoundedUp(work.outputBytes, nodeBytes));
        return layer;
    }

    // The work is cut into layers whose weights fit into the core's memory. Those behind the first find the
    // input there, and are linked to it.
    void addTiles(OruLayerType type, Work work, std::uint64_t weightBytes, std::uint32_t mergedGroup) {
        const std::uint64_t tiles = quotientRoundedUp(weightBytes, coreMemoryBytes);
        const bool continuesGroup = mergedGroup != 0;
        const std::uint32_t group = tiles > 1 && !continuesGroup ? ++groups_ : mergedGroup;
        work.macs /= tiles;
        work.bytesMoved /= tiles;
        work.outputBytes /= tiles;
        for (std::uint64_t tile = 0; tile < tiles; ++tile) {
            OruLayer& layer = addOffloaded(type, work);
            layer.mergedGroup = group;
            layer.startsGroup = tile == 0 && !continuesGroup;
            layer.loopback = !layer.startsGroup;
        }
    }

    // The compiler puts the padding in once the layer is there, and schedules it before.
    void addPaddingBefore(std::uint64_t bytes) {
        const std::size_t padded = network_.oruLayers.size() - 1;
        OruLayer& padding = addOruLayer(OruLayerType::layoutPad, dspCycles(2 * bytes));
        std::swap(padding.schedule, network_.oruLayers[padded].schedule);
    }

    void addInput() {
        shape_ = inputShape;
        network_.inputBytes = shape_.bytes() * bytesPerFloat;
        network_.outputBytes = classCount * bytesPerFloat;
        if (addZebLayer("input_1")) {
            addOruLayer(OruLayerType::quantize, dspCycles(shape_.bytes() * (bytesPerFloat + 1)));
            addOruLayer(OruLayerType::layoutPad, dspCycles(2 * shape_.bytes()));
        }
    }

    void addFirstConvolution() {
        const std::uint64_t taps = depthwiseTaps * shape_.channels;
        const std::uint64_t inputBytes = shape_.bytes();
        shape_ = {shape_.height / 2, shape_.width / 2, firstChannels};
        if (addZebLayer("conv1")) {
            addOffloaded(OruLayerType::superConv, {.macs = shape_.bytes() * taps,
                                                   .macsPerCycle = firstConvolutionMacs,
                                                   .bytesMoved = inputBytes + shape_.bytes(),
                                                   .outputBytes = shape_.bytes()});
            addOruLayer(OruLayerType::cacheOp, flushCycles(shape_.bytes()));
        }
    }

    void addBlocks(std::uint32_t layers) {
        const std::uint32_t furtherLayers = layers - std::min(layers, frontLayers + rearLayers);
        for (std::uint32_t position = 0; position < layers; position += 2) {
            if (position < frontLayers) {
                addBlock(frontBlocks[position / 2], layers - position);
            } else if (position < frontLayers + furtherLayers) {
                addBlock(furtherBlock, layers - position);
            } else {
                addBlock(rearBlocks[(position - frontLayers - furtherLayers) / 2], layers - position);
            }
        }
    }

    void addBlock(const Block& block, std::uint32_t layersLeft) {
        const std::string number = std::to_string(++blocks_);
        const std::uint32_t group = addDepthwise("conv_dw_" + number, block.halves, layersLeft > 1);
        if (layersLeft > 1) {
            addPointwise("conv_pw_" + number, block.channels, group);
        }
    }

    // Returns the group that the pointwise convolution behind it joins: the two are linked when the tensor
    // between them fits into the core's memory.
    std::uint32_t addDepthwise(std::string name, bool halves, bool pointwiseFollows) {
        const std::uint64_t inputBytes = shape_.bytes();
        if (halves) {
            shape_ = {shape_.height / 2, shape_.width / 2, shape_.channels};
        }
        const bool linked = pointwiseFollows && shape_.bytes() <= coreMemoryBytes;
        addZebLayer(std::move(name));
        OruLayer& layer =
            addOffloaded(OruLayerType::superConv, {.macs = shape_.bytes() * depthwiseTaps,
                                                   .macsPerCycle = depthwiseMacs,
                                                   .bytesMoved = inputBytes + (linked ? 0 : shape_.bytes()),
                                                   .outputBytes = shape_.bytes()});
        layer.mergedGroup = linked ? ++groups_ : 0;
        if (halves) {
            addPaddingBefore(inputBytes);
        }
        if (!linked) {
            addOruLayer(OruLayerType::cacheOp, flushCycles(shape_.bytes()));
        }
        return linked ? groups_ : 0;
    }

    void addPointwise(std::string name, std::uint64_t channels, std::uint32_t mergedGroup) {
        const std::uint64_t inputBytes = mergedGroup != 0 ? 0 : shape_.bytes();
        const std::uint64_t weightBytes = shape_.channels * channels;
        const std::uint64_t macs = shape_.bytes() * channels;
        shape_.channels = channels;
        addZebLayer(std::move(name));
        addTiles(OruLayerType::superConv,
                 {.macs = macs,
                  .bytesMoved = inputBytes + weightBytes + shape_.bytes(),
                  .outputBytes = shape_.bytes()},
                 weightBytes, mergedGroup);
        OruLayer& flush = addOruLayer(OruLayerType::cacheOp, flushCycles(shape_.bytes()));
        if (mergedGroup != 0) {
            flush.alsoForZebLayer = flush.zebLayer - 1;
        }
    }

    void addPooling() {
        if (addZebLayer("global_average_pooling2d")) {
            addOffloaded(OruLayerType::superAvgPool, {.macs = shape_.bytes(),
                                                      .macsPerCycle = depthwiseMacs,
                                                      .bytesMoved = shape_.bytes() + shape_.channels,
                                                      .outputBytes = shape_.channels});
            addOruLayer(OruLayerType::layoutSlice, dspCycles(2 * shape_.channels));
        }
        shape_ = {1, 1, shape_.channels};
    }

    void addClassifier() {
        if (addZebLayer("conv_preds")) {
            const std::uint64_t weightBytes = shape_.channels * classCount;
            addTiles(OruLayerType::superGemm,
                     {.macs = weightBytes,
                      .bytesMoved = shape_.bytes() + weightBytes + classCount,
                      .outputBytes = classCount},
                     weightBytes, 0);
            addOruLayer(OruLayerType::cacheOp, flushCycles(classCount));
        }
        shape_.channels = classCount;
    }

    void addReshape() {
        if (addZebLayer("reshape_2")) {
            addOruLayer(OruLayerType::reshape, dspCycles(0));
        }
    }

    void addPredictions() {
        if (addZebLayer("predictions")) {
            addOruLayer(OruLayerType::softmax, dspSetupCycles + classCount * softmaxCyclesPerValue);
            addOruLayer(OruLayerType::quantize, dspCycles(classCount * (bytesPerFloat + 1)));
        }
    }

    std::uint32_t zebLayerCount_;
    Network network_;
    Shape shape_;
    std::uint32_t blocks_ = 0;
    std::uint32_t groups_ = 0;
};

}  // namespace

Network makeNetwork(std::uint32_t zebLayerCount) {
    return NetworkBuilder(zebLayerCount).build();
}

}  // namespace zeb::samplelog
