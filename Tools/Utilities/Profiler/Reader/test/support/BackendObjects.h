#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "LogWriter.h"

/// The binary objects that the backend leaves in a log, byte by byte.
namespace zeb::test {

/// A number written into an object, little-endian.
void put32(samplelog::Bytes& bytes, std::size_t at, std::uint32_t value);
void put64(samplelog::Bytes& bytes, std::size_t at, std::uint64_t value);

/// One ORU layer, as the configuration and the profile have it.
struct Layer {
    std::uint32_t id = 0;
    std::uint32_t type = 0;
    std::uint32_t flags = 0;  ///< 1 offloaded, 2 linked, 4 loopback
    std::uint32_t group = 0;
    std::uint32_t execCount = 0;
    std::uint32_t orderKey = 0;
    std::uint64_t timeUs = 0;
    std::uint64_t dspCycles = 0;
    std::uint64_t coreCycles = 0;
};

samplelog::Bytes layerConfigObject(std::uint32_t krelHz, std::uint32_t dspHz,
                                   const std::vector<Layer>& layers);

struct ProfileTotals {
    std::uint64_t acceleratorUs = 0;
    std::uint32_t executions = 0;
    std::uint64_t dspGraphUs = 0;
};
samplelog::Bytes graphProfileObject(const ProfileTotals& totals, const std::vector<Layer>& layers = {});

/// @param entries of a layer and the index of its name each
samplelog::Bytes nodeMappingObject(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries);
samplelog::Bytes nodeNamesObject(const std::vector<std::string>& names);

}  // namespace zeb::test
