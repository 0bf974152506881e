// The steps of loading, each by itself over a small log in memory: what they cost in instructions, without
// files and fresh memory.

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmark/Shapes.h"
#include "log/ChunkCheck.h"
#include "log/FlatBufferReaderUtil.h"
#include "store/EventStore.h"

namespace {

using namespace zeb;

constexpr std::size_t logShare = 100;  // a log has one message for so many of a quick table run
constexpr std::int8_t allMessages = 127;

struct MemoryLog {
    std::vector<std::unique_ptr<profiling::LogChunkBuffer>> chunks;
    std::size_t size = 0;
};

MemoryLog logOf(const bench::Shape& shape) {
    std::ostringstream out;
    writeLog(out, shape, shape.quick / logShare + 1);
    const std::string bytes = out.str();
    MemoryLog log;
    for (std::size_t at = 0; at < bytes.size();) {
        std::uint32_t length = 0;
        std::memcpy(&length, bytes.data() + at, sizeof(length));
        log.chunks.push_back(std::make_unique<profiling::LogChunkBuffer>(length));
        std::memcpy(log.chunks.back()->data(), bytes.data() + at + sizeof(length), length);
        log.size += length;
        at += sizeof(length) + length;
    }
    return log;
}

void decode(const MemoryLog& log, profiling::EventStore& store) {
    profiling::FlatBufferReaderUtil walker;
    for (const auto& chunk : log.chunks) {
        if (!walker.openChunk(*chunk)) {
            throw std::runtime_error("damaged chunk");
        }
        while (const auto* const message = walker.nextMessage()) {
            store.dispatchMethod(*message, walker.chunk());
        }
    }
}

void setSpeed(benchmark::State& state, const MemoryLog& log) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(log.size));
}

void verifyLog(benchmark::State& state, const bench::Shape& shape) {
    const MemoryLog log = logOf(shape);
    for ([[maybe_unused]] auto iteration : state) {
        for (const auto& chunk : log.chunks) {
            benchmark::DoNotOptimize(profiling::checkChunk(chunk->bytes()));
        }
    }
    setSpeed(state, log);
}

void decodeLog(benchmark::State& state, const bench::Shape& shape) {
    const MemoryLog log = logOf(shape);
    for ([[maybe_unused]] auto iteration : state) {
        profiling::EventStore store(allMessages);
        decode(log, store);
    }
    setSpeed(state, log);
}

void aggregateLog(benchmark::State& state, const bench::Shape& shape) {
    const MemoryLog log = logOf(shape);
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        auto store = std::make_unique<profiling::EventStore>(allMessages);
        decode(log, *store);
        std::ostringstream notes;
        state.ResumeTiming();
        store->aggregateStatistics(notes);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
    setSpeed(state, log);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const bench::Shape& shape : bench::allShapes()) {
        if (shape.name == "objects") {
            continue;  // one payload is no small log
        }
        const std::string name(shape.name);
        benchmark::RegisterBenchmark((name + "/verify").c_str(), verifyLog, shape);
        benchmark::RegisterBenchmark((name + "/decode").c_str(), decodeLog, shape);
        benchmark::RegisterBenchmark((name + "/aggregate").c_str(), aggregateLog, shape);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
