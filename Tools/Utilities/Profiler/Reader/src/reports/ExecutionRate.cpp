#include "reports/ExecutionRate.h"

namespace zeb::profiling {

float executionRate(const MethodRecord& record) {
    const bool durationFirst = record.events.front().name == "duration";
    const std::uint64_t durationUs = record.events.walkTo(durationFirst ? 0 : 1).value().asNumber();
    const std::uint64_t count = record.events.walkTo(durationFirst ? 1 : 0).value().asNumber();
    return durationUs == 0 ? 0.0F : static_cast<float>(count) * 1000000.0F / static_cast<float>(durationUs);
}

}  // namespace zeb::profiling
