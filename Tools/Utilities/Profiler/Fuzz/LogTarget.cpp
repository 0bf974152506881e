// The bytes are a file.

#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zeb::fuzz::checkLog({data, size}, zeb::profiling::VisibilityLevel{127});
    return 0;
}
