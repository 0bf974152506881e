// The bytes are the binary objects of a well-formed log: node mapping, node name table, layer configuration
// and graph profile, the first three behind their lengths.

#include <array>

#include "harness/FuzzInput.h"
#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"
#include "support/TestLog.h"

namespace {

using namespace zeb::test;
using zeb::fuzz::FuzzInput;

constexpr std::array<std::uint64_t, 4> profileLevels = {2, 1100, 1, 3};

zeb::samplelog::Bytes logWithPayloads(FuzzInput input) {
    const std::uint64_t profileLevel = profileLevels[input.below(profileLevels.size())];
    const bool isAsync = input.flag();
    const auto mapping = input.bytes();
    const auto names = input.bytes();
    const auto layerConfig = input.bytes();
    const auto graphProfile = input.rest();
    const Event accelerator = event(
        isAsync ? "ZebGraph_executeAsync" : "ZebGraph_execute", number(9000),
        {object("Graph Execute Profile Data", graphProfile),
         event("HLOS Graph Execution Time", number(~0ULL)), event("Input Tensor Copy Time", number(30))});
    return logOf({{
        message(MethodType::Init, "", 10, {object("Node Mapping", mapping), object("Node Names", names)}),
        message(MethodType::Finalize, "graph", 20, {object("Layer Configuration", layerConfig)}),
        message(isAsync ? MethodType::ExecuteAsync : MethodType::Execute, "graph", 30,
                {event("Execute Profiling Level", number(profileLevel)), accelerator}),
    }});
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zeb::fuzz::checkLog(logWithPayloads(FuzzInput({data, size})), zeb::profiling::VisibilityLevel{127});
    return 0;
}
