// The walker and what it rests on, against good chunks and chunks bent byte by byte.

#include <gtest/gtest.h>

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
using test::Message;
using test::message;
using test::MethodType;

// A chunk without its length prefix.
Bytes chunkOf(const std::vector<Message>& messages) {
    test::Header header;
    header.generatorName = "tool";
    const Bytes log = test::logOf({messages}, header);
    return {log.begin() + 4, log.end()};
}

void put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    std::memcpy(bytes.data() + at, &value, 4);
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

test::Event treeOf(int levels) {
    test::Event tree = event("leaf");
    for (int level = 1; level < levels; ++level) {
        tree = event("node", {}, {std::move(tree)});
    }
    return tree;
}

TEST(ChunkCheck, RefusesBentChunks) {
    const Bytes good = chunkOf({message(MethodType::Execute, "net", 5, {event("marker", test::number(3))})});
    ASSERT_EQ(checkChunk(good), ChunkFault::none);
    const struct {
        const char* damage;
        std::function<void(Bytes&)> bend;
        ChunkFault fault;
    } cases[] = {
        {"11 bytes", [](Bytes& chunk) { chunk.resize(11); }, ChunkFault::tooShort},
        {"no bytes", [](Bytes& chunk) { chunk.clear(); }, ChunkFault::tooShort},
        {"root offset 0", [](Bytes& chunk) { put32(chunk, 0, 0); }, ChunkFault::rootOffset},
        {"negative root offset", [](Bytes& chunk) { put32(chunk, 0, 0x80000000U); }, ChunkFault::rootOffset},
        {"root offset at the end",
         [](Bytes& chunk) { put32(chunk, 0, static_cast<std::uint32_t>(chunk.size())); },
         ChunkFault::rootOffset},
        {"root offset at the last byte",
         [](Bytes& chunk) { put32(chunk, 0, static_cast<std::uint32_t>(chunk.size()) - 1); },
         ChunkFault::verification},
        {"vtable of odd size",
         [](Bytes& chunk) {
             const std::size_t root = get32(chunk, 0);
             ++chunk[root - get32(chunk, root)];
         },
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
}

TEST(ChunkCheck, RefusesChunksTooLongForTheirOffsets) {
    const std::uint8_t byte = 0;  // refused by its size alone, before a byte is read
    EXPECT_EQ(checkChunk({&byte, 2147483647}), ChunkFault::tooLong);
    EXPECT_EQ(checkChunk({&byte, 4294967295}), ChunkFault::tooLong);
}

TEST(ChunkCheck, AllowsEventsToNest62Deep) {
    EXPECT_EQ(checkChunk(chunkOf({message(MethodType::Execute, "net", 5, {treeOf(62)})})), ChunkFault::none);
    EXPECT_EQ(checkChunk(chunkOf({message(MethodType::Execute, "net", 5, {treeOf(63)})})),
              ChunkFault::verification);
}

TEST(ChunkCheck, AsksForTimeAndTiming) {
    flatbuffers::FlatBufferBuilder builder;
    const auto lacking = [&builder](bool time, bool timing) {
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
        return checkChunk({builder.GetBufferPointer(), builder.GetSize()});
    };
    EXPECT_EQ(lacking(true, true), ChunkFault::none);
    EXPECT_EQ(lacking(false, true), ChunkFault::verification);
    EXPECT_EQ(lacking(true, false), ChunkFault::verification);
}

TEST(Walker, ReadsTablesAtAnyAddress) {
    const Bytes chunk =
        chunkOf({message(MethodType::Execute, "net", 5, {event("marker", test::number(77))})});
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
        EXPECT_EQ(walker.nextMessage(), nullptr);
    }
}

TEST(Walker, HandsOutMessagesInOrderAndKeepsTheFirstHeader) {
    FlatBufferReaderUtil walker;
    EXPECT_EQ(walker.nextMessage(), nullptr);
    const LogChunkBuffer first =
        bufferOf(chunkOf({message(MethodType::Init, "a", 1), message(MethodType::Init, "b", 1)}));
    const LogChunkBuffer second = bufferOf(chunkOf({message(MethodType::Init, "c", 1)}));

    ASSERT_TRUE(walker.openChunk(first));
    const schema::LogHeader* const header = walker.header();
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "a");
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "b");
    EXPECT_EQ(walker.nextMessage(), nullptr);
    ASSERT_TRUE(walker.openChunk(second));
    EXPECT_EQ(walker.header(), header);
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "c");
    const test::CaughtLog log;
    EXPECT_EQ(walker.nextMessage(), nullptr);
    EXPECT_TRUE(log.has("5 profiling::FlatBufferReaderUtil no more messages! (Message Counter: 1)"));
}

TEST(Walker, LogsADamagedChunkAndStaysAsItWas) {
    FlatBufferReaderUtil walker;
    const LogChunkBuffer good = bufferOf(chunkOf({message(MethodType::Init, "a", 1)}));
    ASSERT_TRUE(walker.openChunk(good));
    const test::CaughtLog log;
    EXPECT_FALSE(walker.openChunk(bufferOf(Bytes(20, 0xFF))));
    EXPECT_EQ(log.lines(), std::vector<std::string>{"1 Corrupted flatbuffer binary stream"});
    EXPECT_EQ(visibleText(walker.nextMessage()->text()), "a");
}

TEST(Walker, LetsGoOfAChunk) {
    FlatBufferReaderUtil walker;
    {
        const LogChunkBuffer buffer = bufferOf(chunkOf({message(MethodType::Execute, "net", 5)}));
        ASSERT_TRUE(walker.openChunk(buffer));
        ASSERT_NE(walker.header(), nullptr);
        walker.closeChunk();
    }
    EXPECT_EQ(walker.header(), nullptr);
    EXPECT_EQ(walker.nextMessage(), nullptr);
}

TEST(ChunkReader, TellsWhereEachChunkStandsAndWhatIsMissing) {
    const test::TempDir dir;
    const Bytes log = {3, 0, 0, 0, 'a', 'b', 'c', 0, 0, 0, 0, 9, 0, 0, 0, 'x', 'y'};
    ChunkReader chunks(dir.write("log", log));
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
