#include "support/PluginLogs.h"

#include "LogWriter.h"

namespace zeb::test {

namespace {

samplelog::Bytes logWith(std::vector<samplelog::Event> events) {
    samplelog::Header header;
    header.generatorName = "tool";
    header.generatorVersion = "1.2";
    samplelog::Message execution;
    execution.methodType = samplelog::MethodType::Execute;
    execution.text = "net";
    execution.timing = {.startTime = 1, .endTime = 1235};
    execution.events = std::move(events);
    return samplelog::encodeLog(header, {execution});
}

}  // namespace

std::vector<std::uint8_t> smallLog() {
    return logWith({});
}

std::vector<std::uint8_t> logWithoutANumber() {
    samplelog::Event level;
    level.name = "Execute Profiling Level";
    level.value = std::string("deep");
    return logWith({level});
}

}  // namespace zeb::test
