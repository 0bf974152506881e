#include "samplelog/MethodsLog.h"

#include <string>
#include <utility>

#include "samplelog/ChunkedLog.h"
#include "samplelog/EventMakers.h"

namespace zeb::samplelog {

namespace {

constexpr std::uint32_t otherEventType = 200;
constexpr auto unknownMethod = static_cast<MethodType>(18);

Message message(MethodType type, std::uint64_t timestamp, std::uint64_t durationUs,
                std::optional<std::string> text = std::nullopt, std::vector<Event> events = {}) {
    Message made;
    made.methodType = type;
    made.timestamp = timestamp;
    made.timing = {timestamp - durationUs, timestamp};
    made.text = std::move(text);
    made.events = std::move(events);
    return made;
}

Message atLevel(std::int8_t level, Message message) {
    message.level = level;
    return message;
}

Event initEvent(Event event) {
    return ofType(initEventType, std::move(event));
}

Event finalizeEvent(Event event) {
    return ofType(finalizeEventType, std::move(event));
}

Event queueWait(std::uint64_t us) {
    return ofType(queueWaitEventType, timeEvent("queue wait", us));
}

Event accelerator(std::uint64_t us, std::vector<Event> subEvents = {}) {
    Event made = timeEvent("accelerator", us, std::move(subEvents));
    made.type = otherEventType;
    return made;
}

// One event of each kind of value, and of each unit.
std::vector<Event> valueEvents() {
    return {
        event("no value", {}, none),
        event("signed", std::int64_t{-40}, microseconds),
        event("unsigned", std::uint64_t{18'446'744'073'709'551'615U}, cycles),
        event("float", 2.5F, count),
        event("double", -0.125, bytes),
        event("text", std::string("ready, set"), none),
        objectEvent("bytes", {0, 1, 2, 253, 254, 255}, "values.bin"),
        objectEvent("bytes without a file", {7}, ""),
        event("unit of the future", std::uint64_t{9}, 77),
    };
}

std::vector<Message> startMessages() {
    return {
        message(MethodType::DynamicLibLoad, 1'000, 310, std::nullopt, {timeEvent("dlopen", 300)}),
        message(MethodType::InitStep, 2'000, 400, "runner"),
        message(MethodType::ComposeGraphs, 2'100, 50, "left"),
        message(MethodType::ComposeGraphs, 2'200, 70, "right"),
        message(
            MethodType::Finalize, 3'000, 600, "left",
            {finalizeEvent(timeEvent("prepare", 580,
                                     {timeEvent("optimize", 400, {event("passes", std::uint64_t{12}, count)}),
                                      timeEvent("plan", 180)})),
             finalizeEvent(objectEvent("plan of left", {1, 2, 3}, "plan.bin"))}),
        message(MethodType::Finalize, 3'700, 650, "right",
                {finalizeEvent(objectEvent("plan of right", {4, 5}, "plan.bin")),
                 initEvent(timeEvent("replaced later", 1))}),
        message(MethodType::Init, 4'000, 2'500, std::nullopt, {timeEvent("replaced by graph events", 2)}),
    };
}

std::vector<Message> binaryMessages() {
    return {
        message(MethodType::ContextGetBinarySize, 5'000, 10, "first size"),
        message(MethodType::ContextGetBinary, 5'100, 90),
        message(MethodType::ContextGetBinarySize, 5'200, 12, "second size"),
        message(MethodType::ContextGetBinarySectionSize, 5'300, 30, "section 0"),
        message(MethodType::ContextGetBinarySectionSize, 5'400, 0, "section 1"),
        message(MethodType::ContextGetBinarySectionSize, 5'500, 45),
        message(MethodType::ApplyBinarySection, 6'000, 200, "left", {timeEvent("upload", 150)}),
        message(MethodType::ApplyBinarySectionAlternate, 6'300, 250, "left", {timeEvent("upload", 175)}),
        message(MethodType::ApplyBinarySection, 6'600, 80, "right"),
        message(MethodType::FinalizeAfterTensorUpdates, 7'000, 300, "left [0]", {timeEvent("rebuild", 280)}),
        message(MethodType::FinalizeAfterTensorUpdates, 7'400, 310, "left [1]", {timeEvent("rebuild", 291)}),
        message(MethodType::FinalizeAfterTensorUpdates, 7'700, 20, "right"),
        message(MethodType::UpdateBinarySection, 7'800, 60, std::nullopt, {timeEvent("patch", 55)}),
    };
}

std::vector<Message> executionMessages() {
    Message unfinished = message(MethodType::ExecuteAsync, 12'000, 0, "left", {queueWait(70)});
    unfinished.timing.endTime.reset();
    const std::vector<Event> cores = {
        event("core", std::uint64_t{700}, cycles,
              {event("tile 0", std::uint64_t{400}, cycles,
                     {event("stalls", std::uint64_t{25}, count), objectEvent("trace", {9, 9}, "trace.bin")}),
               event("tile 1", std::uint64_t{300}, cycles)}),
        objectEvent("counters", {8, 0}, "counters.bin")};
    return {
        message(MethodType::ExecuteAsync, 10'000, 1'200, "left", {queueWait(50), accelerator(900, cores)}),
        message(MethodType::ExecuteAsync, 11'000, 900, "left", {accelerator(800, {queueWait(31)})}),
        unfinished,
        atLevel(1, message(MethodType::ExecuteAsync, 13'000, 1'500, "left",
                           {queueWait(60), accelerator(1'101), event("load", 0.5F, none)})),
        atLevel(
            5, message(MethodType::ExecuteAsync, 14'000, 5'000, "left", {queueWait(80), accelerator(4'900)})),
        atLevel(-1, message(MethodType::Execute, 15'000, 2'000, "right")),
        message(MethodType::Execute, 16'000, 2'400, "right"),
        message(unknownMethod, 16'500, 1, "from a newer runtime"),
        message(MethodType::Execute, 17'000, 1'000, std::nullopt, {accelerator(1)}),
    };
}

std::vector<Message> closingMessages() {
    return {
        message(MethodType::GraphEvents, 0, 0, "right", {queueWait(100), accelerator(1'700)}),
        message(MethodType::GraphEvents, 0, 0, "right", {queueWait(110), accelerator(1'900)}),
        message(MethodType::GraphEvents, 0, 0, "left",
                {initEvent(timeEvent("device", 2'000, {timeEvent("firmware", 1'500)})),
                 finalizeEvent(timeEvent("prepared again", 575, {timeEvent("optimized", 400)})),
                 finalizeEvent(objectEvent("plan again", {6}, "plan.bin")),
                 initEvent(objectEvent("layers", {3, 0, 0, 0}, "layers"))}),
        message(MethodType::ExecuteOverall, 20'000, 8'000, std::nullopt,
                {event("count", std::uint64_t{6}, count), timeEvent("duration", 8'000)}),
        message(MethodType::DeInit, 21'000, 150, "runner", valueEvents()),
    };
}

}  // namespace

void writeMethodsLog(std::ostream& out) {
    const Header header{.timeScale = 0.5F,
                        .epochTimestamp = 1'790'845'200'000'000,
                        .steadyClockTimestamp = 900,
                        .generatorName = "sorel-graph-runner",
                        .generatorVersion = "v2.51.0",
                        .backendInfo = "v2.51.0.260929181845"};
    writeChunks(out, header, {startMessages(), binaryMessages(), {}, executionMessages(), closingMessages()});
}

}  // namespace zeb::samplelog
