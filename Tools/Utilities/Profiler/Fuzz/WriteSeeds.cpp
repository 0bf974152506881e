// Writes the inputs that fuzzing starts from: write-fuzz-seeds DIRECTORY makes one directory for each target.

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/MakeRun.h"
#include "forms/json/RunJson.h"
#include "harness/MemoryFile.h"
#include "log/ChunkCheck.h"
#include "log/Methods.h"
#include "samplelog/BackendObjectWriter.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "samplelog/SharedEventsLog.h"
#include "support/TestLog.h"

namespace {

using namespace zeb::test;
using zeb::samplelog::Bytes;
using zeb::samplelog::Unit;
namespace samplelog = zeb::samplelog;

constexpr int methodTypes =
    static_cast<int>(zeb::profiling::methods.size()) + 1;  // with one that is not known

void write(const std::filesystem::path& path, const Bytes& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("can't write " + path.string());
    }
}

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

// What a writer of sample logs puts out.
template <typename Write>
Bytes written(Write writeLog) {
    std::ostringstream out;
    writeLog(out);
    return bytesOf(out.view());
}

struct Payloads {
    Bytes mapping;
    Bytes names;
    Bytes layerConfig;
    Bytes graphProfile;
};

// A framework layer for each two accelerator layers.
Payloads payloadsOf(std::uint32_t layers) {
    std::vector<samplelog::NodeMappingEntry> mapping;
    std::vector<std::string> names;
    samplelog::LayerConfig config{500'000'000, 1'000'000'000, layers, {}};
    samplelog::GraphProfile profile{9000, 2, layers, 700, {}};
    for (std::uint32_t layer = 0; layer < layers; ++layer) {
        mapping.push_back({layer, {layer / 2, layer}});
        names.push_back("layer_" + std::to_string(layer));
        config.entries.push_back(
            {layer, layer * 31, layer % 2 == 1, layer % 4 > 1, layer % 8 > 3, layer / 2});
        profile.layerRecords.push_back({1, layer % 3, 9 - layer, 100, 200, 300, 4, 5, 6, 7});
    }
    return {samplelog::encodeNodeMapping(mapping), samplelog::encodeNameTable(names),
            samplelog::encodeLayerConfig(config), samplelog::encodeGraphProfile(profile)};
}

std::vector<Event> eventsWith(const Payloads& payloads) {
    return {
        ofType(zeb::samplelog::initEventType, object("mapping", payloads.mapping, "mapping.bin")),
        ofType(zeb::samplelog::initEventType, object("names", payloads.names)),
        ofType(zeb::samplelog::finalizeEventType, object("config", payloads.layerConfig)),
        ofType(zeb::samplelog::queueWaitEventType, event("graphQueueWaitUs", number(4))),
        event("Execute Profiling Level", std::string("2")),
        event("ZebGraph_execute", number(80),
              {object("Graph Execute Profile Data", payloads.graphProfile, "p.bin")}),
        inUnit(Unit::cycles, event("cycles", std::int64_t{-5})),
        inUnit(Unit::count, event("ratio", 1.5F, {event("below", 2.5, {event("deeper")})})),
    };
}

void writeLogs(const std::filesystem::path& directory) {
    const Payloads payloads = payloadsOf(3);
    std::vector<std::vector<Message>> chunks;
    for (int type = 0; type < methodTypes; ++type) {
        const auto methodType = static_cast<MethodType>(type);
        const std::vector<Message> messages = {
            message(methodType, "graph [1]", 50, eventsWith(payloads)),
            message(methodType, "graph [1]", 70, eventsWith(payloads), 2000)};
        write(directory / ("method-" + std::to_string(type)), logOf({messages}));
        chunks.push_back(
            {message(methodType, "graph", 50, {event("duration", number(9)), event("count", number(3))})});
    }
    const Header header{.timeScale = 1.0F,
                        .epochTimestamp = 1'700'000'000'000'000,
                        .steadyClockTimestamp = 5,
                        .generatorName = "sorel-lora-adapter-bin-updater",
                        .generatorVersion = "1",
                        .backendInfo = "2"};
    write(directory / "all-methods", logOf(chunks, header));
    write(directory / "header-alone", logOf({{}}, header));
    Bytes damaged = logOf({{message(MethodType::Execute, "graph", 5)}, {}});
    damaged.resize(damaged.size() - 3);
    write(directory / "cut-off", damaged);
    write(directory / "empty", {});
    write(directory / "methods", written(samplelog::writeMethodsLog));
    for (const bool isAsync : {false, true}) {
        for (const auto level : {samplelog::ProfileLevel::detailed, samplelog::ProfileLevel::internal}) {
            const samplelog::NetworkOptions options{
                .async = isAsync, .level = level, .executions = 2, .layers = 3, .graphs = 2};
            write(directory /
                      ("network-" + std::to_string(static_cast<int>(level)) + (isAsync ? "-async" : "")),
                  written([&options](std::ostream& out) { samplelog::writeNetworkLog(out, options); }));
        }
    }
    write(directory / "shared-events",
          samplelog::encodeSharedEventsLog({.levels = 5, .sharedLevels = 3, .fanOut = 6}));
}

void writeMessages(const std::filesystem::path& directory) {
    for (int type = 0; type < methodTypes; ++type) {
        Bytes input = {0, 0, 0, 0, 128, 63, 1, 2, 3, 4, 5, 6, 7, 0, 0, 0, 0};  // level, header
        for (std::uint8_t name = 0; name < 12; ++name) {
            for (const std::uint8_t value : Bytes{2, 5, 7}) {
                // A message of the type with a time, and one event of the name.
                const Bytes message = {2, static_cast<std::uint8_t>(type), 0, 1, 50, 0, 1, name, value, 9};
                input.insert(input.end(), message.begin(), message.end());
            }
        }
        write(directory / ("method-" + std::to_string(type)), input);
    }
}

void writePayloads(const std::filesystem::path& directory) {
    for (const std::uint32_t layers : {0U, 1U, 4U, 9U}) {
        const Payloads payloads = payloadsOf(layers);
        for (const std::uint8_t level : Bytes{0, 1}) {
            Bytes input = {level, static_cast<std::uint8_t>(layers % 2)};
            for (const Bytes& payload : {payloads.mapping, payloads.names, payloads.layerConfig}) {
                input.push_back(static_cast<std::uint8_t>(payload.size() & 0xFFU));
                input.push_back(static_cast<std::uint8_t>(payload.size() >> 8U));
                input.insert(input.end(), payload.begin(), payload.end());
            }
            input.insert(input.end(), payloads.graphProfile.begin(), payloads.graphProfile.end());
            write(directory / ("layers-" + std::to_string(layers) + "-level-" + std::to_string(level)),
                  input);
        }
    }
}

void writeOptions(const std::filesystem::path& directory) {
    using namespace std::string_view_literals;
    int number = 0;
    for (const std::string_view line :
         {"run.log"sv, "--csv\0out.csv\0run.log"sv, "--level=-5\0run.log\0--internal"sv,
          "run.log\0--extra_help"sv, "--reader\0generic\0--save-objects=d\0--max-memory=64M\0--\0-run.log"sv,
          "--help"sv, "--version"sv, "run.log\0--intrenal\0=3"sv, "a\0--internal=1\0-2\0b\0--internal"sv}) {
        write(directory / std::to_string(number++), bytesOf(line));
    }
}

// Events that stand one below the other, in the JSON of a run.
std::string nestedEvents(std::uint32_t levels) {
    std::string json = R"({"schema":"zeb-profile-run/1","steps":[{"events":[)";
    for (std::uint32_t level = 1; level < levels; ++level) {
        json += R"({"events":[)";
    }
    json += "{}";
    for (std::uint32_t level = 0; level < levels; ++level) {
        json += "]}";
    }
    return json + "]}";
}

void writeRuns(const std::filesystem::path& directory) {
    const auto writeRun = [&directory](const std::string& name, const Bytes& log) {
        zeb::fuzz::MemoryFile file;
        file.assign(log);
        const auto run = zeb::analysis::makeRun(file.path(), zeb::profiling::VisibilityLevel{127});
        write(directory / name, written([&run](std::ostream& out) { zeb::forms::writeRunJson(out, *run); }));
    };
    const Header header{
        .timeScale = 1.0F, .generatorName = "generator", .generatorVersion = "1", .backendInfo = "2"};
    writeRun("nothing", {});
    writeRun("one-execution",
             logOf({{message(MethodType::Execute, "graph", 50, eventsWith(payloadsOf(2)))}}));
    writeRun("header-and-two-graphs",
             logOf({{message(MethodType::Finalize, "a", 30), message(MethodType::Execute, "a", 50),
                     message(MethodType::Execute, "b", 70)}},
                   header));
    writeRun("methods", written(samplelog::writeMethodsLog));
    writeRun("network", written([](std::ostream& out) {
                 samplelog::writeNetworkLog(out, {.async = true, .executions = 3, .layers = 2});
             }));
    for (const std::uint32_t levels :
         {zeb::profiling::maxEventDepth, zeb::profiling::maxEventDepth + 1, 400U}) {
        write(directory / ("events-nested-" + std::to_string(levels)), bytesOf(nestedEvents(levels)));
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) {
            throw std::invalid_argument("usage: write-fuzz-seeds DIRECTORY");
        }
        const std::filesystem::path directory = argv[1];
        writeLogs(directory / "log");
        writeMessages(directory / "messages");
        writePayloads(directory / "payloads");
        writeOptions(directory / "options");
        writeRuns(directory / "run");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
