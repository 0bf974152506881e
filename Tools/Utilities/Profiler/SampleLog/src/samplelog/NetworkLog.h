#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "samplelog/Network.h"

/// The log of a run of the sample network.
namespace zeb::samplelog {

/// How deep a run is profiled, by the number that the log gives it.
enum class ProfileLevel : std::uint32_t {
    basic = 1,       ///< the run as a whole; no layer data
    detailed = 2,    ///< with the layers
    internal = 1100  ///< with the layers and what only the accelerator's developers ask for
};

/// A ZEB layer whose times are longer than those of the network as it was designed.
struct SlowerLayer {
    std::string name;
    std::uint32_t millionths = 0;  ///< that its times grow by
};

/// Each count is at least 1.
struct NetworkOptions {
    bool async = false;
    ProfileLevel level = ProfileLevel::detailed;
    std::uint32_t executions = 20;              ///< of each graph
    std::uint32_t layers = designedLayerCount;  ///< ZEB layers of each graph
    std::uint32_t graphs = 1;
    std::optional<std::uint64_t> seed =
        std::nullopt;  ///< adds random variation; without it nothing is random
    std::uint32_t driftMillionths =
        0;  ///< standard deviation of one factor on all times, drawn from the seed below
    std::optional<std::uint64_t> driftSeed =
        std::nullopt;  ///< logs of one have one drift, whatever else varies; nothing: the seed above
    std::uint32_t slowerMillionths = 0;  ///< that all times grow by
    std::optional<SlowerLayer> slowerLayer = std::nullopt;
    std::uint64_t epochUs = 1'790'845'200'000'000;  ///< when the log was created, since the Unix epoch
    std::string generatorVersion = "v2.51.0.260929181845";
    std::string backendVersion = "v2.51.0.260929181845";
    std::uint32_t slowingMillionths = 0;  ///< that the last execution is slower by than the second
    std::uint32_t noiseMillionths = 0;    ///< standard deviation of the executions, in place of their rhythm
    std::uint32_t wanderMillionths = 0;   ///< of an execution's noise that the next one keeps
};

/// Writes the log in chunks, with the messages in the order in which a runtime writes them; the state of the
/// stream tells whether that succeeded.
void writeNetworkLog(std::ostream& out, const NetworkOptions& options);

}  // namespace zeb::samplelog
