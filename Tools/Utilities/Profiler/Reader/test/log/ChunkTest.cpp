// The walker and what it rests on, against good chunks and chunks bent byte by byte.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "log/ChunkCheck.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogAccess.h"
#include "support/TestLog.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::event;
using test::message;
using test::MethodType;
using test::put32;

// A chunk without its length prefix.
Bytes chunkOf(const std::vector<test::Message>& messages) {
    const Bytes log = test::logOf({messages});
    return {log.begin() + 4, log.end()};
}

Bytes executionWith(test::Event made) {
    return chunkOf({message(MethodType::Execute, "net", 5, {std::move(made)})});
}

std::uint32_t get32(const Bytes& bytes, std::size_t at) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
}

std::size_t positionOf(const Bytes& bytes, std::string_view text) {
    const auto found = std::search(bytes.begin(), bytes.end(), text.begin(), text.end());
    return static_cast<std::size_t>(found - bytes.begin());
}

LogChunkBuffer bufferOf(const Bytes& bytes) {
    LogChunkBuffer buffer(bytes.size());
    std::copy(bytes.begin(), bytes.end(), buffer.data());
    return buffer;
}

TEST(ChunkCheck, RefusesBentChunks) {
    const Bytes good = executionWith(event("marker", test::number(3)));
    ASSERT_EQ(checkChunk(good), ChunkFault::none);
    const struct {
        const char* damage;
        std::function<void(Bytes&)> bend;
        ChunkFault fault;
    } cases[] = {
        {"11 bytes", [](Bytes& chunk) { chunk.resize(11); }, ChunkFault::tooShort},
        {"no bytes", [](Bytes& chunk) { chunk.clear(); }, ChunkFault::tooShort},
        {"root 0", [](Bytes& chunk) { put32(chunk, 0, 0); }, ChunkFault::rootOffset},
        {"negative root", [](Bytes& chunk) { put32(chunk, 0, 0x80000000U); }, ChunkFault::rootOffset},
        {"root at the end", [](Bytes& chunk) { put32(chunk, 0, chunk.size()); }, ChunkFault::rootOffset},
        {"root at the last byte", [](Bytes& chunk) { put32(chunk, 0, chunk.size() - 1); },
         ChunkFault::verification},
        {"vtable of odd size", [](Bytes& chunk) { ++chunk[get32(chunk, 0) - get32(chunk, get32(chunk, 0))]; },
         ChunkFault::verification},
        {"string without its NUL", [](Bytes& chunk) { chunk[positionOf(chunk, "marker") + 6] = 'x'; },
         ChunkFault::verification},
        {"string longer than the chunk",
         [](Bytes& chunk) { put32(chunk, positionOf(chunk, "marker") - 4, 0xFFFFFFFFU); },
         ChunkFault::verification},
        {"cut in the middle", [](Bytes& chunk) { chunk.resize(chunk.size() / 2); }, ChunkFault::verification},
    };
    for (const auto& [damage, bend, fault] : cases) {
        Bytes chunk = good;
        bend(chunk);
        EXPECT_EQ(checkChunk(chunk), fault) << damage;
    }
    const std::uint8_t byte = 0;  // refused by its size alone, before a byte is read
    EXPECT_EQ(checkChunk({&byte, 2147483647}), ChunkFault::tooLong);
    EXPECT_EQ(checkChunk({&byte, 4294967295}), ChunkFault::tooLong);
}

TEST(ChunkCheck, AllowsEventsToNest62Deep) {
    test::Event tree = event("leaf");
    for (int level = 1; level < 62; ++level) {
        tree = event("node", {}, {std::move(tree)});
    }
    EXPECT_EQ(checkChunk(executionWith(tree)), ChunkFault::none);
    EXPECT_EQ(checkChunk(executionWith(event("node", {}, {tree}))), ChunkFault::verification);
}

TEST(ChunkCheck, AsksForTimeAndTiming) {
    flatbuffers::FlatBufferBuilder builder;
    for (const auto& [time, timing] : {std::pair(true, true), {false, true}, {true, false}}) {
        builder.Clear();
        const auto timeTable = schema::CreateMessageTime(builder, 5);
        const auto timingTable = schema::CreateMethodTiming(builder);
        const auto start = builder.StartTable();
        if (time) {
            builder.AddOffset(schema::LogMessage::VT_TIME, timeTable);
        }
        if (timing) {
            builder.AddOffset(schema::LogMessage::VT_TIMING, timingTable);
        }
        const flatbuffers::Offset<schema::LogMessage> table(builder.EndTable(start));
        builder.Finish(schema::CreateLogChunk(builder, 0, builder.CreateVector(&table, 1)));
        EXPECT_EQ(checkChunk({builder.GetBufferPointer(), builder.GetSize()}),
                  time && timing ? ChunkFault::none : ChunkFault::verification);
    }
}

TEST(Walker, ReadsTablesAtAnyAddress) {
    const Bytes chunk = executionWith(event("marker", test::number(77)));
    for (std::uint32_t shift = 0; shift < 8; ++shift) {
        Bytes shifted(shift, 0);  // all offsets but the root's are relative
        shifted.insert(shifted.end(), chunk.begin(), chunk.end());
        put32(shifted, 0, get32(chunk, 0) + shift);
        const LogChunkBuffer buffer = bufferOf(shifted);
        FlatBufferReaderUtil walker;
        ASSERT_TRUE(walker.openChunk(buffer));
        const auto* const events = walker.nextMessage()->events();
        EXPECT_EQ(visibleText(tableAt(events, 0)->name()), "marker");
        EXPECT_EQ(tableAt(events, 0)->uintValue(), 77U);
    }
}

TEST(Walker, HandsOutMessagesInOrderAndKeepsItsHeaderUntilItLetsGo) {
    FlatBufferReaderUtil walker;
    EXPECT_EQ(walker.nextMessage(), nullptr);
    const LogChunkBuffer first =
        bufferOf(chunkOf({message(MethodType::Init, "a", 1), message(MethodType::Init, "b", 1)}));
    const LogChunkBuffer second = bufferOf(chunkOf({message(MethodType::Init, "c", 1)}));
    const test::CaughtLog log;
    ASSERT_TRUE(walker.openChunk(first));
    const schema::LogHeader* const header = walker.header();
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "a");
    EXPECT_FALSE(walker.openChunk(bufferOf(Bytes(20, 0xFF))));
    EXPECT_EQ(log.lines(), std::vector<std::string>{"1 Corrupted flatbuffer binary stream"});
    EXPECT_EQ(walker.fault(), ChunkFault::rootOffset);
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "b") << "a damaged chunk leaves it as it was";
    EXPECT_EQ(walker.nextMessage(), nullptr);
    const std::uint64_t firstNumber = walker.chunk().number;
    ASSERT_TRUE(walker.openChunk(second));
    EXPECT_EQ(walker.fault(), ChunkFault::none);
    EXPECT_NE(walker.chunk().number, firstNumber);
    EXPECT_EQ(walker.chunk().bytes.data(), second.data());
    EXPECT_EQ(walker.header(), header);
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "c");
    EXPECT_EQ(walker.nextMessage(), nullptr);
    EXPECT_TRUE(log.has("5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 1)"));
    ASSERT_TRUE(walker.openChunk(first));
    walker.closeChunk();
    EXPECT_EQ(walker.header(), nullptr);
    EXPECT_EQ(walker.nextMessage(), nullptr) << "though it has not handed out all of them";
    EXPECT_TRUE(walker.chunk().bytes.empty());
}

TEST(ChunkReader, TellsWhereEachChunkStandsAndWhatIsMissing) {
    const test::TempDir dir;
    ChunkReader chunks(dir.write("log", Bytes{3, 0, 0, 0, 'a', 'b', 'c', 0, 0, 0, 0, 9, 0, 0, 0, 'x', 'y'}));
    ASSERT_TRUE(chunks.nextLength());
    EXPECT_EQ(chunks.length(), 3U);
    EXPECT_EQ(chunks.readBody()->bytes()[2], 'c');
    ASSERT_TRUE(chunks.nextLength());
    EXPECT_EQ(chunks.readBody()->size(), 0U);
    ASSERT_TRUE(chunks.nextLength());
    EXPECT_EQ(chunks.index(), 2U);
    EXPECT_EQ(chunks.offset(), 11U);
    EXPECT_EQ(chunks.readBody(), nullptr);
    EXPECT_EQ(chunks.bytesRead(), 2U);
    EXPECT_FALSE(chunks.nextLength());
}

}  // namespace
}  // namespace zeb::profiling
