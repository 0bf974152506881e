#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <ostream>
#include <string>
#include <thread>

#include "command/FileDescriptor.h"
#include "command/StandardOutput.h"
#include "console/TerminalText.h"

namespace zeb::command {
namespace {

using console::shownOnOneLine;
using console::TerminalText;

TEST(TerminalText, ShowsWhatATerminalWouldObey) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x99\x82", "plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x99\x82"},
        {std::string("\0\t\r\x1B[2J\x7F", 8), "????[2J?"},
        {"\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0", "???\xC2\xA0"},
        {"\xE2\x80\xA7\xE2\x80\xA8\xE2\x80\xAA\xE2\x80\xAE\xE2\x80\xAF", "\xE2\x80\xA7???\xE2\x80\xAF"},
        {"\xE2\x81\xA5\xE2\x81\xA6\xE2\x81\xA9\xE2\x81\xAA", "\xE2\x81\xA5??\xE2\x81\xAA"},
        // Bytes that make no character: those that are controls by themselves are hidden.
        {"\x80\x9B\xA0\xFF", "??\xA0\xFF"},
        {"\xE0\x82\x9B\xC1\x9B\xED\xA0\x9B", "\xE0??\xC1?\xED\xA0?"},
        {"\xE2\x9B"
         "x\xF0\x80\x82\x9B",
         "\xE2?x\xF0???"},
        {"cut off \xE2\x80", "cut off ?"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(shownOnOneLine(text), shown);
        TerminalText inPieces(TerminalText::Newlines::kept);
        std::string pieces;
        for (const char byte : text) {
            pieces += inPieces.shown({&byte, 1});
        }
        EXPECT_EQ(pieces + inPieces.rest(), shown);
    }
    EXPECT_EQ(shownOnOneLine("a\nb"), "a?b");
    EXPECT_EQ(TerminalText(TerminalText::Newlines::kept).shown("a\nb\n"), "a\nb\n");
}

// What `write` leaves in a pipe, through a buffer for a terminal.
template <typename Write>
std::string throughTerminalBuffer(Write write) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const FileDescriptor reading(ends[0]);
    const FileDescriptor writing(ends[1]);
    DescriptorBuffer buffer(writing.get());
    buffer.setTerminalText(true);
    std::ostream out(&buffer);
    write(out, buffer);
    EXPECT_EQ(::write(writing.get(), ".", 1), 1);
    std::string text(1000, '\0');
    text.resize(static_cast<std::size_t>(::read(reading.get(), text.data(), text.size())));
    return text;
}

TEST(StandardOutput, KeepsACharacterUntilItIsWholeAndTellsTheOneThatNeverIs) {
    EXPECT_EQ(throughTerminalBuffer([](std::ostream& out, DescriptorBuffer& /*buffer*/) {
                  out << "a\xE2" << std::flush << "\x82" << std::flush;
              }),
              "a.");
    EXPECT_EQ(throughTerminalBuffer([](std::ostream& out, DescriptorBuffer& /*buffer*/) {
                  out << "a\xE2" << std::flush << "\x82\xAC" << std::flush;
              }),
              "a\xE2\x82\xAC.");
    EXPECT_EQ(throughTerminalBuffer([](std::ostream& out, DescriptorBuffer& buffer) {
                  out << "a\xE2\x82";
                  buffer.finish();
              }),
              "a?.");
    EXPECT_EQ(throughTerminalBuffer([](std::ostream& out, DescriptorBuffer& buffer) {
                  out << "a\xE2\x82";
                  buffer.setTerminalText(false);
                  out << "\xAC\x1B" << std::flush;
              }),
              "a?\xAC\x1B.");
}

// Somebody who shares the pipe may have set it so.
TEST(StandardOutput, WaitsForAPipeThatDoesNot) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK), 0);
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    const std::string text(1 << 20U, 'x');
    std::thread writer([&] {
        DescriptorBuffer buffer(writing.get());
        std::ostream(&buffer) << text << std::flush;
        EXPECT_EQ(buffer.error(), 0);
        writing = FileDescriptor(-1);
    });
    std::string received;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 1; count != 0;) {
        count = ::read(reading.get(), bytes.data(), bytes.size());
        received.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    writer.join();
    EXPECT_EQ(received, text);
}

}  // namespace
}  // namespace zeb::command
