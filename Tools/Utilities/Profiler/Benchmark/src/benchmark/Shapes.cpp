#include "benchmark/Shapes.h"

#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "samplelog/BackendObjectWriter.h"
#include "samplelog/EventMakers.h"
#include "samplelog/LogWriter.h"
#include "samplelog/SharedEventsLog.h"
#include "samplelog/SharedTextLog.h"

namespace zeb::bench {

using samplelog::Bytes;
using samplelog::Event;
using samplelog::Message;
using samplelog::MethodType;
using samplelog::Value;

/// Writes messages, and ends a chunk when it is large enough.
class ChunkedLog {
public:
    ChunkedLog(std::ostream& out, std::size_t chunkLimit) : out_(out), writer_(out), chunkLimit_(chunkLimit) {
        writer_.setHeader({.timeScale = 1.0F,
                           .epochTimestamp = 1'700'000'000'000'000,
                           .steadyClockTimestamp = 1000,
                           .generatorName = "profiling-runtime",
                           .generatorVersion = "1.0",
                           .backendInfo = "murl"});
    }

    void add(const Message& message) {
        writer_.add(message);
        isOpen_ = writer_.openChunkSize() <= chunkLimit_;
        if (!isOpen_) {
            writer_.finishChunk();
        }
    }

    /// Writes chunks that are made already, in front of the messages that are not written yet.
    void addChunks(const Bytes& chunks) {
        out_.write(reinterpret_cast<const char*>(chunks.data()), static_cast<std::streamsize>(chunks.size()));
    }

    void finish() {
        if (isOpen_) {
            writer_.finishChunk();
        }
    }

private:
    std::ostream& out_;
    samplelog::LogWriter writer_;
    std::size_t chunkLimit_;
    bool isOpen_ = true;
};

namespace {

constexpr std::size_t usualChunk = 1U << 20U;
constexpr std::size_t messageAChunk = 0;
constexpr std::size_t allInOneChunk = std::numeric_limits<std::size_t>::max();

constexpr std::array<const char*, 12> eventNames = {
    "ZebGraph_execute",
    "Input Tensor Copy Time",
    "Output Tensor Copy Time",
    "graphQueueWaitUs",
    "HLOS Graph Execution Time",
    "RPC",
    "Accelerator Time",
    "DSP Time (cycles)",
    "cache flush",
    "Krel Core Time (cycles)",
    "wait for core",
    "Execution Count",
};

Event event(std::string name, Value value, std::vector<Event> subEvents = {}) {
    constexpr std::uint32_t plainType = 400;
    Event made = samplelog::event(std::move(name), std::move(value), samplelog::cycles, std::move(subEvents));
    made.type = plainType;
    return made;
}

Event object(std::string name, Bytes bytes) {
    return samplelog::objectEvent(std::move(name), std::move(bytes), {});
}

Message message(MethodType type, std::string graph, std::uint64_t durationUs, std::vector<Event> events) {
    return {.methodType = type,
            .text = std::move(graph),
            .timing = {.startTime = 1000, .endTime = 1000 + durationUs},
            .timestamp = 5000,
            .events = std::move(events)};
}

// An event with `width` events below it, and so on for `levels` levels.
Event tree(std::size_t number, std::size_t width, std::size_t levels) {
    Event root = event(eventNames[number % eventNames.size()], std::uint64_t{number * 37 % 100'000});
    for (std::size_t position = 0; levels > 0 && position < width; ++position) {
        root.subEvents.push_back(tree(number + position + 1, width, levels - 1));
    }
    return root;
}

std::vector<Event> usualEvents(std::size_t execution) {
    std::vector<Event> events;
    for (std::size_t position = 0; position < eventNames.size(); ++position) {
        events.push_back(tree(position, 2, 1));
        events.back().value = std::uint64_t{execution % 1000 + position};
        for (Event& below : events.back().subEvents) {
            below.subEvents.push_back(event("dispatch", std::uint64_t{execution % 50}));
        }
    }
    return events;
}

void writeSteady(ChunkedLog& log, std::size_t executions) {
    for (std::size_t execution = 0; execution < executions; ++execution) {
        log.add(message(MethodType::Execute, "main graph", 2000 + execution * 7919 % 501,
                        usualEvents(execution)));
    }
}

void writeManyGraphs(ChunkedLog& log, std::size_t graphs) {
    for (std::size_t graph = 0; graph < graphs; ++graph) {
        log.add(message(MethodType::Execute, "graph of the model, number " + std::to_string(graph),
                        1000 + graph % 100, {tree(graph, 2, 1)}));
    }
}

void writeFinalizedGraphs(ChunkedLog& log, std::size_t graphs) {
    for (std::size_t graph = 0; graph < graphs; ++graph) {
        log.add(message(MethodType::Finalize, "graph of the model, number " + std::to_string(graph),
                        4000 + graph % 100, {tree(graph, 2, 1)}));
    }
    writeManyGraphs(log, graphs);
}

void writeWide(ChunkedLog& log, std::size_t names) {
    constexpr std::size_t records = 20;
    for (std::size_t record = 0; record < records; ++record) {
        std::vector<Event> events;
        for (std::size_t name = 0; name < names; ++name) {
            events.push_back(event("node number " + std::to_string(name), std::uint64_t{name + record}));
        }
        log.add(message(MethodType::Execute, "wide graph", 1000 + record, std::move(events)));
    }
}

void writeLateEvents(ChunkedLog& log, std::size_t executions) {
    for (std::size_t execution = 0; execution < executions; ++execution) {
        log.add(message(MethodType::Execute, "main graph", 1000 + execution % 100, {}));
    }
    for (std::size_t execution = 0; execution < executions; ++execution) {
        log.add(message(MethodType::GraphEvents, "main graph", 0, {tree(execution, 1, 1)}));
    }
}

void writeRising(ChunkedLog& log, std::size_t executions) {
    for (std::size_t execution = 0; execution < executions; ++execution) {
        std::vector<Event> events;
        for (std::size_t position = 0; position < eventNames.size(); ++position) {
            events.push_back(tree(position, 6, 2));
        }
        log.add(message(MethodType::Execute, "slowing graph", 1000 + execution, std::move(events)));
    }
}

void writeObjects(ChunkedLog& log, std::size_t payloads) {
    constexpr std::size_t payloadSize = 16U << 20U;
    for (std::size_t payload = 0; payload < payloads; ++payload) {
        log.add(message(MethodType::Execute, "main graph", 1000 + payload,
                        {object("dump", Bytes(payloadSize, static_cast<std::uint8_t>(payload)))}));
    }
}

void writeStrings(ChunkedLog& log, std::size_t executions) {
    for (std::size_t execution = 0; execution < executions; ++execution) {
        std::vector<Event> events;
        for (std::size_t position = 0; position < eventNames.size(); ++position) {
            const std::string number = std::to_string(execution * eventNames.size() + position);
            events.push_back(
                event("state of a stage", "state of the pipeline at that moment: " + number,
                      {event("comment", "as the driver tells it, in some more words, " + number)}));
        }
        log.add(message(MethodType::Execute, "main graph", 1000 + execution % 100, std::move(events)));
    }
}

void writeDeep(ChunkedLog& log, std::size_t executions) {
    constexpr std::size_t depth = 60;
    for (std::size_t execution = 0; execution < executions; ++execution) {
        log.add(message(MethodType::Execute, "deep graph", 1000 + execution % 100,
                        {tree(execution, 1, depth - 1)}));
    }
}

void writeNewNames(ChunkedLog& log, std::size_t executions) {
    constexpr std::size_t eventsEach = 20;
    for (std::size_t execution = 0; execution < executions; ++execution) {
        std::vector<Event> events;
        for (std::size_t position = 0; position < eventsEach; ++position) {
            events.push_back(
                event("node of this one record, number " + std::to_string(execution * eventsEach + position),
                      std::uint64_t{position}));
        }
        log.add(message(MethodType::Execute, "main graph", 1000 + execution % 100, std::move(events)));
    }
}

// @param share how many layers have the same name
Bytes nodeMapping(std::size_t layers, std::size_t share) {
    std::vector<samplelog::NodeMappingEntry> entries(layers);
    for (std::size_t layer = 0; layer < layers; ++layer) {
        entries[layer] = {static_cast<std::uint32_t>(layer), {static_cast<std::uint32_t>(layer / share)}};
    }
    return samplelog::encodeNodeMapping(entries);
}

Bytes nodeNames(std::size_t layers) {
    std::vector<std::string> names;
    for (std::size_t index = 0; index < layers; ++index) {
        names.push_back(zebLayerName(index));
    }
    return samplelog::encodeNameTable(names);
}

Bytes layerConfiguration(std::size_t layers) {
    samplelog::LayerConfig config{.krelClockHz = 1'000'000'000,
                                  .dspClockHz = 800'000'000,
                                  .layerCount = static_cast<std::uint32_t>(layers),
                                  .entries = {}};
    for (std::size_t layer = 0; layer < layers; ++layer) {
        const LayerFigures figures = layerFigures(layer);
        config.entries.push_back(
            {.layerId = figures.id, .layerType = figures.type, .offloaded = figures.offloaded});
    }
    return samplelog::encodeLayerConfig(config);
}

Bytes graphProfile(std::size_t layers) {
    samplelog::GraphProfile profile{.acceleratorTimeUs = 500'000,
                                    .executionCount = 10,
                                    .layerCount = static_cast<std::uint32_t>(layers),
                                    .dspGraphTimeUs = 400'000,
                                    .layerRecords = {}};
    for (std::size_t layer = 0; layer < layers; ++layer) {
        const LayerFigures figures = layerFigures(layer);
        profile.layerRecords.push_back({.nodeCount = 3,
                                        .execCount = figures.executions,
                                        .orderKey = figures.orderKey,
                                        .totalTimeUs = figures.timeUs,
                                        .totalDspCycles = figures.dspCycles,
                                        .totalCoreCycles = figures.coreCycles});
    }
    return samplelog::encodeGraphProfile(profile);
}

void writeLayers(ChunkedLog& log, std::size_t layers) {
    log.add(message(MethodType::Init, "", 3000,
                    {object("node mapping", nodeMapping(layers, oruLayersPerZebLayer)),
                     object("node names", nodeNames(layers / oruLayersPerZebLayer))}));
    log.add(message(MethodType::Finalize, "main graph", 4000,
                    {object("layer configuration", layerConfiguration(layers))}));
    log.add(message(MethodType::Execute, "main graph", 50'000,
                    {event("Execute Profiling Level", std::uint64_t{2}),
                     event("ZebGraph_execute", std::uint64_t{480'000},
                           {event("Input Tensor Copy Time", std::uint64_t{900}),
                            event("HLOS Graph Execution Time", std::uint64_t{450'000}),
                            object("Graph Execute Profile Data", graphProfile(layers))})}));
}

// The text grows with the number of those who refer to it.
constexpr std::size_t textPerReference = 8;

void writeSharedText(ChunkedLog& log, std::size_t references) {
    log.addChunks(samplelog::encodeSharedTextLog(
        {MethodType::Finalize, references, std::string(references * textPerReference, 'n')}));
}

void writeSharedLayer(ChunkedLog& log, std::size_t layers) {
    const std::vector<std::string> names = {std::string(layers * textPerReference, 'n')};
    log.add(message(MethodType::Init, "", 3000,
                    {object("node mapping", nodeMapping(layers, layers)),
                     object("node names", samplelog::encodeNameTable(names))}));
}

void writeSharedName(ChunkedLog& log, std::size_t events) {
    log.addChunks(samplelog::encodeSharedEventsLog({.levels = 2,
                                                    .sharedLevels = 1,
                                                    .fanOut = static_cast<std::uint32_t>(events),
                                                    .name = std::string(events * textPerReference, 'n'),
                                                    .objectName = {}}));
}

// Its CSV report joins the texts, so it takes the product of both.
void writeSharedCompose(ChunkedLog& log, std::size_t references) {
    log.addChunks(samplelog::encodeSharedTextLog(
        {MethodType::ComposeGraphs, references, std::string(references * textPerReference, 'n')}));
}

constexpr std::array<Shape, 17> shapes = {{
    {"steady", "steady", 4'000, 12'000, 24'000, usualChunk, writeSteady, true, true, true},
    {"tiny-chunks", "tiny chunks", 4'000, 12'000, 24'000, messageAChunk, writeSteady},
    {oneChunkShape, "one chunk", 4'000, 12'000, 109'000, allInOneChunk, writeSteady},
    {"many-graphs", "many graphs", 50'000, 200'000, 200'000, usualChunk, writeManyGraphs, true, true, true},
    {"finalized-graphs", "finalized graphs", 50'000, 100'000, 200'000, usualChunk, writeFinalizedGraphs,
     false, false, true},
    {"wide", "wide", 8'000, 20'000, 40'000, usualChunk, writeWide},
    {"late-events", "late events", 60'000, 200'000, 200'000, usualChunk, writeLateEvents},
    {"rising", "rising", 400, 1'200, 2'400, usualChunk, writeRising},
    {"objects", "objects", 4, 4, 8, usualChunk, writeObjects},
    {layersShape, "layers", 100'000, 200'000, 400'000, usualChunk, writeLayers, true, true, true},
    {"strings", "strings", 4'000, 16'000, 32'000, usualChunk, writeStrings},
    {"deep", "deep", 4'000, 12'000, 24'000, usualChunk, writeDeep},
    {"new-names", "new names", 8'000, 24'000, 48'000, usualChunk, writeNewNames},
    {"shared-text", "shared text", 40'000, 160'000, 320'000, usualChunk, writeSharedText, true, false, true},
    {"shared-layer", "shared layer", 200'000, 800'000, 1'600'000, usualChunk, writeSharedLayer},
    {"shared-name", "shared name", 40'000, 160'000, 320'000, usualChunk, writeSharedName, false, false, true},
    {"shared-compose", "shared compose", 40'000, 160'000, 320'000, usualChunk, writeSharedCompose, false,
     false, true},
}};

}  // namespace

std::span<const Shape> allShapes() {
    return shapes;
}

void writeLog(std::ostream& out, const Shape& shape, std::size_t size) {
    ChunkedLog log(out, shape.chunkLimit);
    shape.write(log, size);
    log.finish();
}

LayerFigures layerFigures(std::size_t index) {
    const auto number = static_cast<std::uint32_t>(index);
    return {.id = number,
            .type = number % 90,
            .offloaded = number % 3 != 0,
            .orderKey = number * 2654435761U % 1'000'003U,
            .executions = 10,
            .timeUs = 1000 + index * 7919 % 100'000,
            .dspCycles = 100'000 + index * 104'729 % 10'000'000,
            .coreCycles = 100'000 + index * 15'485'863 % 10'000'000};
}

std::string zebLayerName(std::size_t index) {
    return "model/block_" + std::to_string(index / 12) + "/conv_" + std::to_string(index);
}

}  // namespace zeb::bench
