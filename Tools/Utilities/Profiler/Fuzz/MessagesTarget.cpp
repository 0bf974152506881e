// The bytes choose the messages of a well-formed log.

#include <array>
#include <bit>
#include <sstream>
#include <string_view>

#include "harness/FuzzInput.h"
#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"

namespace {

using namespace zeb::samplelog;
using zeb::fuzz::FuzzInput;

constexpr int maxDepth = 64;  // two more than a reader takes
constexpr std::size_t maxEvents = 12;

// Names that the reports ask for.
constexpr std::array<std::string_view, 12> eventNames = {
    "Execute Profiling Level",
    "ZebGraph_execute",
    "ZebGraph_executeAsync",
    "graphQueueWaitUs",
    "dispatcherQueueWaitUs",
    "HLOS Graph Execution Time",
    "Input Tensor Copy Time",
    "Output Tensor Copy Time",
    "Graph Execute Profile Data",
    "duration",
    "count",
    "Accelerator",
};
constexpr std::array<std::string_view, 5> graphNames = {"graph", "graph [0]", "graph [1]", "other", ""};
constexpr std::array<std::uint32_t, 4> eventTypes = {0, initEventType, finalizeEventType, queueWaitEventType};
constexpr std::array<std::string_view, 6> numberTexts = {"2",  "1100", "18446744073709551616",
                                                         "-1", "none", ""};

// One of the names, a text of its own, or none.
template <std::size_t Size>
std::optional<std::string> chooseText(FuzzInput& input, const std::array<std::string_view, Size>& known) {
    const std::size_t choice = input.below(Size + 2);
    if (choice < Size) {
        return std::string(known[choice]);
    }
    return choice == Size ? std::optional(input.text()) : std::nullopt;
}

Value chooseValue(FuzzInput& input) {
    switch (input.below(9)) {
        case 1:
            return std::bit_cast<std::int64_t>(input.number<std::uint64_t>());
        case 2:
            return input.number<std::uint64_t>();
        case 3:
            return std::bit_cast<float>(input.number<std::uint32_t>());
        case 4:
            return std::bit_cast<double>(input.number<std::uint64_t>());
        case 5:
            return chooseText(input, numberTexts).value_or("");
        case 6:
            return input.shortBytes();
        case 7:
            return std::uint64_t{input.number<std::uint8_t>()};
        case 8:
            return std::uint64_t{1100};
        default:
            return {};
    }
}

std::vector<Event> chooseEvents(FuzzInput& input, int depth);

Event chooseEvent(FuzzInput& input, int depth) {
    Event event;
    event.name = chooseText(input, eventNames);
    event.value = chooseValue(input);
    const std::size_t traits = input.below(256);
    event.unit = static_cast<std::uint32_t>(traits % 8);
    event.type = eventTypes[traits / 8 % eventTypes.size()];
    if ((traits & 0x20U) != 0) {
        event.fileName = input.text();
    }
    if ((traits & 0x40U) != 0) {
        event.valueSelector = input.number<std::uint8_t>();
    }
    if ((traits & 0x80U) != 0) {
        event.subEvents = chooseEvents(input, depth + 1);
    }
    return event;
}

std::vector<Event> chooseEvents(FuzzInput& input, int depth) {
    std::vector<Event> events;
    const std::size_t count = depth > maxDepth ? 0 : input.below(maxEvents);
    while (events.size() < count && !input.empty()) {
        events.push_back(chooseEvent(input, depth));
    }
    return events;
}

Message chooseMessage(FuzzInput& input) {
    Message message;
    message.methodType = static_cast<MethodType>(input.number<std::uint8_t>());
    message.text = chooseText(input, graphNames);
    const std::size_t traits = input.below(256);
    if ((traits & 1U) != 0) {
        message.timing = {.startTime = 0, .endTime = input.number<std::uint16_t>()};
    } else if ((traits & 2U) != 0) {
        message.timing = {.startTime = input.number<std::uint64_t>(),
                          .endTime = input.number<std::uint64_t>()};
    }
    message.timestamp = (traits & 4U) != 0 ? input.number<std::uint64_t>() : traits;
    message.level =
        (traits & 8U) != 0 ? std::bit_cast<std::int8_t>(input.number<std::uint8_t>()) : std::int8_t{0};
    message.events = chooseEvents(input, 1);
    return message;
}

Header chooseHeader(FuzzInput& input) {
    constexpr std::array<std::string_view, 1> names = {"sorel-lora-adapter-bin-updater"};
    Header header;
    header.timeScale = std::bit_cast<float>(input.number<std::uint32_t>());
    header.epochTimestamp = input.number<std::uint64_t>();
    header.generatorName = chooseText(input, names);
    header.generatorVersion = chooseText(input, names);
    header.backendInfo = chooseText(input, names);
    return header;
}

Bytes chooseLog(FuzzInput& input) {
    std::ostringstream out;
    LogWriter writer(out);
    while (!input.empty()) {
        switch (input.below(8)) {
            case 0:
                writer.setHeader(chooseHeader(input));
                break;
            case 1:
                writer.finishChunk();
                break;
            default:
                writer.add(chooseMessage(input));
                break;
        }
    }
    writer.finishChunk();
    const std::string_view log = out.view();
    return {log.begin(), log.end()};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input({data, size});
    const auto level = input.flag() ? input.number<std::uint8_t>() : std::uint8_t{127};
    const Bytes log = chooseLog(input);
    zeb::fuzz::checkLog(log, zeb::profiling::VisibilityLevel{std::bit_cast<std::int8_t>(level)});
    return 0;
}
