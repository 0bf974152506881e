// Loading: what is read, what is refused, and what a refused log leaves behind.

#include <gtest/gtest.h>

#include <filesystem>
#include <new>

#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::CaughtLog;
using test::event;
using test::message;
using test::MethodType;
using Lines = std::vector<std::string>;
using Loaded = test::Loaded<ZebProfileLogReader>;

constexpr const char* corrupted = "1 Corrupted flatbuffer binary stream";

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// An execution that aggregation has something to say about.
test::Message execution(const std::string& graph) {
    const test::Event wait = test::ofType(samplelog::queueWaitEventType, event("wait", test::number(1)));
    return message(MethodType::ExecuteAsync, graph, 5, {wait, wait});
}

Bytes chunk(const std::vector<test::Message>& messages) {
    return samplelog::encodeLog(std::nullopt, messages);
}

Bytes withoutRoot(Bytes chunk) {
    std::fill_n(chunk.begin() + 4, 4, std::uint8_t{0});
    return chunk;
}

TEST(LoadLog, TakesWholeLogsOnlyAndKeepsWhatItHasStored) {
    const Bytes first = chunk({execution("a")});
    const Bytes second = chunk({execution("b")});
    const struct {
        const char* log;
        Bytes bytes;
        bool isLoaded;
        std::size_t graphs;
    } cases[] = {
        {"empty", {}, true, 0},
        {"3 bytes", {7, 0, 0}, true, 0},
        {"stray bytes behind a chunk", first + Bytes{7, 0}, true, 1},
        {"a chunk without messages", first + chunk({}) + second, true, 2},
        {"an unknown method", chunk({message(MethodType::Unknown, "x", 1), execution("a")}), true, 1},
        {"a prefix of 0", first + Bytes{0, 0, 0, 0} + second, false, 1},
        {"a damaged first chunk", withoutRoot(first) + second, false, 0},
        {"a damaged second chunk", first + withoutRoot(second), false, 1},
        {"a chunk that the end cuts off", first + Bytes(second.begin(), second.end() - 1), false, 1},
        {"a prefix and nothing else", first + Bytes{12, 0, 0, 0}, false, 1},
    };
    for (const auto& [name, bytes, isLoaded, graphs] : cases) {
        const CaughtLog log(ZEB_LOG_LEVEL_ERROR);
        const Loaded loaded(bytes);
        EXPECT_EQ(loaded.isLoaded, isLoaded) << name;
        EXPECT_EQ(log.has(corrupted), !isLoaded) << name;
        const EventStore& store = loaded.reader.store();
        EXPECT_EQ(store.executeRecords.size(), graphs) << name;
        EXPECT_EQ(store.executeAverage.size(), isLoaded ? graphs : 0) << name;
        EXPECT_EQ(loaded.notes.empty(), !isLoaded || graphs == 0) << name;
    }
}

TEST(LoadLog, OfAMissingFileIsSilentAndMakesNone) {
    const test::TempDir directory;
    const std::string path = directory.path("missing");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(ZebProfileLogReader(path, VisibilityLevel{127}).loadLog(true));
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(std::filesystem::exists(path));
    const CaughtLog log;
    EXPECT_FALSE(ZebProfileLogReader(path, VisibilityLevel{127}).loadLog(false));
    EXPECT_EQ(log.lines(), Lines{"1 Invalid or nonexistent file: " + path});
}

TEST(LoadLog, TellsOfItsStepsToATalkativeLogger) {
    const CaughtLog log;
    const Loaded loaded(chunk({message(MethodType::Execute, "a", 1)}) + test::logOf({{}}) +
                        test::logOf({{}}));
    EXPECT_EQ(log.lines(), (Lines{"5 hdr is nullptr",
                                  "5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 1)",
                                  "5 profiling::ZebProfileLogReader reached EOF!",
                                  "5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 0)",
                                  "5 profiling::ZebProfileLogReader reached EOF!",
                                  "5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 0)",
                                  "5 profiling::ZebProfileLogReader reached EOF!"}));
}

TEST(LoadLog, LeavesNoMessageToReadWhetherItSucceedsOrFails) {
    const Bytes good = test::logOf({{execution("a"), execution("b")}});
    for (const Bytes& bytes : {good, good + withoutRoot(chunk({execution("c")}))}) {
        Loaded loaded(bytes);
        const CaughtLog log;
        EXPECT_FALSE(loaded.reader.readNextMessage());
        EXPECT_TRUE(log.has("5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 2)"));
        EXPECT_EQ(loaded.reader.store().executeRecords.size(), 2U);
    }
}

TEST(LoadLog, SurvivesAPrefixOfNearlyFourGigabytes) {
    const CaughtLog log(ZEB_LOG_LEVEL_ERROR);
    EXPECT_FALSE(Loaded(Bytes{0xFE, 0xFF, 0xFF, 0xFF, 1, 2, 3}).isLoaded);
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.lines()[0] == corrupted ||
                log.lines()[0] == "1 Unable to allocate memory: std::bad_alloc")
        << log.lines()[0];
}

TEST(LoadLog, DecodesMessagesBelowItsLevel) {
    const struct {
        int readerLevel;
        std::int8_t messageLevel;
        bool isDecoded;
    } cases[] = {{1, 0, true}, {0, 0, false}, {0, -1, true}, {-128, -128, false}, {127, 127, false}};
    for (const auto& [readerLevel, messageLevel, isDecoded] : cases) {
        test::Message execute = message(MethodType::Execute, "a", 1);
        execute.level = messageLevel;
        const Loaded loaded(chunk({execute}), false, readerLevel);
        EXPECT_EQ(!loaded.reader.store().executeRecords.empty(), isDecoded)
            << "level " << +messageLevel << ", reader of level " << readerLevel;
    }
}

TEST(LoadLog, SavesNoObjectsWhenItHasFailed) {
    const test::TempDir place;
    const std::string file = place.path("a.bin");
    const Bytes bytes = chunk({message(MethodType::DeInit, "a", 1, {test::object("o", {1}, file)})});
    for (const bool isWhole : {false, true}) {
        Loaded loaded(isWhole ? bytes : bytes + Bytes{0, 0, 0, 0}, true);
        loaded.wholeConsole();
        EXPECT_EQ(std::filesystem::exists(file), isWhole);
    }
}

}  // namespace
}  // namespace zeb::profiling
