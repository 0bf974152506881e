#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "samplelog/BackendObjectWriter.h"
#include "samplelog/Network.h"
#include "samplelog/NetworkLog.h"

/// How long the network takes on the accelerator and on the host, worked out in whole numbers from the cycles
/// of its layers, so that every machine comes to the same times.
namespace zeb::samplelog {

inline constexpr std::uint32_t krelClockHz = 1'017'600'000;
inline constexpr std::uint32_t dspClockHz = 806'400'000;

/// Figures of one execution. The times lie within one another, from the accelerator's own, which is longer
/// than the sum of its layers, to the host's round trip.
struct ExecutionTimes {
    std::uint64_t coreCycles = 0;
    std::uint64_t dspCycles = 0;
    std::uint64_t acceleratorUs = 0;
    std::uint64_t dspGraphUs = 0;
    std::uint64_t hlosUs = 0;
    std::uint64_t inputCopyNs = 0;
    std::uint64_t outputCopyNs = 0;
    std::uint64_t backendUs = 0;              ///< without the queue waits
    std::uint64_t roundTripUs = 0;            ///< without the queue waits
    std::uint64_t graphQueueWaitUs = 0;       ///< of an asynchronous execution
    std::uint64_t dispatcherQueueWaitUs = 0;  ///< of an asynchronous execution

    [[nodiscard]] std::uint64_t queueWaitUs() const { return graphQueueWaitUs + dispatcherQueueWaitUs; }
};

/// A factor on times, in millionths.
struct RunPace {
    std::uint64_t millionths = 1'000'000;

    [[nodiscard]] std::uint64_t of(std::uint64_t value) const { return value * millionths / 1'000'000; }
};

/// @return the factor on all times of a run, from its drift and from what it is slower by
RunPace runPaceOf(const NetworkOptions& options);

/// The times of one graph. The first execution is slower than the rest, which differ by a few per mille.
class NetworkTiming {
public:
    /// @param network has to outlive the timing
    /// @param graph position among the graphs; each has a rhythm of its own
    /// @param options tell the seed and what is slower than designed
    NetworkTiming(const Network& network, std::uint32_t graph, const NetworkOptions& options);

    /// @return the times of an execution, by its position among the executions of the graph
    [[nodiscard]] ExecutionTimes execution(std::uint32_t position) const;

    /// @return the counters of all layers over that many executions, in the order of the network's layers
    [[nodiscard]] std::vector<LayerRecord> layerRecords(std::uint32_t executions) const;

private:
    // One ORU layer in one execution at the usual pace. A time holds those above it.
    struct LayerTimes {
        std::uint64_t coreCycles = 0;
        std::uint64_t dspCycles = 0;
        std::uint64_t flushNs = 0;
        std::uint64_t krelNs = 0;
        std::uint64_t driverNs = 0;
        std::uint64_t halNs = 0;
        std::uint64_t totalNs = 0;
    };

    void addLayer(const OruLayer& layer, RunPace layerPace);
    [[nodiscard]] LayerTimes timeLayer(const OruLayer& layer, std::uint64_t position) const;
    void addPaces(const NetworkOptions& options);
    [[nodiscard]] std::uint64_t pace(std::uint32_t execution) const;
    [[nodiscard]] std::uint64_t rhythm(std::uint32_t execution) const;

    const Network& network_;
    std::uint32_t graph_;
    std::optional<std::uint64_t> seed_;
    RunPace runPace_;
    std::vector<std::uint64_t> paces_;  // of the executions, where they have no rhythm
    std::vector<LayerTimes> layers_;
    LayerTimes sum_;
};

}  // namespace zeb::samplelog
