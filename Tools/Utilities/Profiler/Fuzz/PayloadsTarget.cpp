// The bytes are the binary objects of a well-formed log: node mapping, node name table, layer configuration
// and graph profile, the first three behind their lengths.

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "harness/FuzzInput.h"
#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"
#include "reader/backend/BackendObjects.h"
#include "support/TestLog.h"

namespace {

using namespace zeb::test;
using zeb::fuzz::FuzzInput;
using zeb::fuzz::require;
using zeb::samplelog::Bytes;

constexpr std::array<std::uint64_t, 4> profileLevels = {2, 1100, 1, 3};

struct Payloads {
    explicit Payloads(FuzzInput input)
        : profileLevel(profileLevels[input.below(profileLevels.size())]),
          isAsync(input.flag()),
          mapping(input.bytes()),
          names(input.bytes()),
          layerConfig(input.bytes()),
          graphProfile(input.rest()) {}

    std::uint64_t profileLevel;
    bool isAsync;
    Bytes mapping;
    Bytes names;
    Bytes layerConfig;
    Bytes graphProfile;
};

std::span<const std::byte> bytesOf(const Bytes& object) {
    return std::as_bytes(std::span(object));
}

// A reader keeps objects side by side. Here each ends where its memory does, so that a sanitizer sees what is
// read behind it.
void readObjectsAlone(const Payloads& payloads) {
    zeb::profiling::readLayerConfig(bytesOf(payloads.layerConfig), true);
    zeb::profiling::readGraphProfile(bytesOf(payloads.graphProfile), true);
    for (const auto& entry :
         zeb::profiling::readNodeMapping(bytesOf(payloads.mapping), bytesOf(payloads.names))) {
        require(entry.zebLayerName.find('\0') == std::string_view::npos, "a name ends in front of its NUL");
    }
}

Bytes logWith(const Payloads& payloads) {
    const bool isAsync = payloads.isAsync;
    const Event accelerator = event(
        isAsync ? "ZebGraph_executeAsync" : "ZebGraph_execute", number(9000),
        {object("Graph Execute Profile Data", payloads.graphProfile),
         event("HLOS Graph Execution Time", number(~0ULL)), event("Input Tensor Copy Time", number(30))});
    return logOf({{
        message(MethodType::Init, "", 10,
                {object("Node Mapping", payloads.mapping), object("Node Names", payloads.names)}),
        message(MethodType::Finalize, "graph", 20, {object("Layer Configuration", payloads.layerConfig)}),
        message(isAsync ? MethodType::ExecuteAsync : MethodType::Execute, "graph", 30,
                {event("Execute Profiling Level", number(payloads.profileLevel)), accelerator}),
    }});
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Payloads payloads(FuzzInput({data, size}));
    readObjectsAlone(payloads);
    zeb::fuzz::checkLog(logWith(payloads), zeb::profiling::VisibilityLevel{127});
    return 0;
}
