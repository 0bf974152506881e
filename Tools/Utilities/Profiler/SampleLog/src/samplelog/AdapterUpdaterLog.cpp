#include "samplelog/AdapterUpdaterLog.h"

#include <utility>

#include "samplelog/ChunkedLog.h"
#include "samplelog/EventMakers.h"

namespace zeb::samplelog {

namespace {

Message update(std::uint64_t startTime, std::uint64_t durationUs, std::vector<Event> events) {
    Message made;
    made.methodType = MethodType::UpdateBinarySection;
    made.timing = {startTime, startTime + durationUs};
    made.timestamp = startTime + durationUs;
    made.events = std::move(events);
    return made;
}

Event section(std::uint64_t us, std::uint64_t size, std::uint64_t tensors) {
    return timeEvent("Section Rewrite", us,
                     {event("Section Size", size, bytes), event("Tensors Replaced", tensors, count)});
}

}  // namespace

void writeAdapterUpdaterLog(std::ostream& out) {
    const Header header{.timeScale = 1.0F,
                        .epochTimestamp = 1'790'845'200'000'000,
                        .steadyClockTimestamp = 44'000'000,
                        .generatorName = "sorel-lora-adapter-bin-updater",
                        .generatorVersion = "v2.51.0.260929181845",
                        .backendInfo = "v2.51.0.260929181845"};
    writeChunks(out, header,
                {{update(44'000'400, 5'120, {timeEvent("Binary Load", 1'850), section(3'010, 393'216, 48)})},
                 {update(44'006'100, 4'870,
                         {timeEvent("Binary Load", 1'790), section(2'840, 393'216, 48),
                          objectEvent("Section Table", {2, 0, 0, 0, 48, 0, 0, 0}, "section_table.bin")})}});
}

}  // namespace zeb::samplelog
