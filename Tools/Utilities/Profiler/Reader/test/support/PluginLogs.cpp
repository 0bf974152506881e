#include "support/PluginLogs.h"

#include <sstream>

#include "samplelog/LogWriter.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"

namespace zeb::test {

namespace {

using samplelog::MethodType;

samplelog::Bytes logWith(std::vector<samplelog::Event> events, MethodType method = MethodType::Execute) {
    samplelog::Header header;
    header.generatorName = "tool";
    header.generatorVersion = "1.2";
    samplelog::Message execution;
    execution.methodType = method;
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

std::vector<std::vector<std::uint8_t>> sampleLogs() {
    std::vector<std::vector<std::uint8_t>> logs;
    const auto add = [&logs](const auto& write) {
        std::ostringstream out;
        write(out);
        const std::string bytes = out.str();
        logs.emplace_back(bytes.begin(), bytes.end());
    };
    add(samplelog::writeMethodsLog);
    add([](std::ostream& out) { samplelog::writeNetworkLog(out, {}); });
    return logs;
}

std::vector<std::uint8_t> logWithALongLine(std::size_t size) {
    samplelog::Event line;
    line.name = std::string(size, 'x');
    line.type = samplelog::initEventType;
    samplelog::Event wait;
    wait.type = samplelog::queueWaitEventType;
    return logWith({line, wait, wait}, MethodType::ExecuteAsync);
}

}  // namespace zeb::test
