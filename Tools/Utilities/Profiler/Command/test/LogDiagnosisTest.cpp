// What is said about a log that can't be read.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <vector>

#include "command/LogDiagnosis.h"
#include "support/SystemFaults.h"
#include "support/TestChunks.h"

namespace zeb::command {
namespace {

using test::OrdinaryUser;
using test::prefixOf;
using test::soundLog;
using test::TempDir;
using test::withPrefix;

class LogDiagnosis : public testing::Test {
protected:
    std::string trouble(const std::string& path) { return troubleWithPath(path).value_or(""); }
    std::string whyRejected(const std::string& path) {
        return command::whyRejected(path, memory, "| command -");
    }

    MemoryLimit memory{defaultMemorySize()};

    TempDir files;
};

TEST_F(LogDiagnosis, HasOwnWordsForPlainTroubles) {
    EXPECT_EQ(trouble(files.path("missing.log")), "there is no such file");
    EXPECT_EQ(trouble(files.path("")), "it is a directory, not a log");
    EXPECT_EQ(trouble(files.write("empty.log", "")), "the file is empty");
    EXPECT_EQ(trouble(files.write("file", "x") + "/run.log"), "the log can't be read: Not a directory");
    EXPECT_EQ(trouble(files.path(std::string(300, 'n'))), "the log can't be read: File name too long");
    EXPECT_EQ(trouble(files.write("short.log", "xyz")),
              "the file has only 3 bytes, and no log is that short");
    EXPECT_EQ(trouble(files.write("four-bytes.log", "wxyz")), "");
    EXPECT_EQ(trouble("/dev/null"), "the file is empty");
    const std::string secret = files.write("secret.log", "wxyz");
    ASSERT_EQ(::chmod(files.path("").c_str(), 0755) + ::chmod(secret.c_str(), 0), 0);
    const OrdinaryUser user;
    EXPECT_EQ(trouble(secret), "the log can't be read: Permission denied");
}

TEST_F(LogDiagnosis, LeavesAPipeUnread) {
    const std::string path = files.path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(trouble(path), "");
    EXPECT_EQ(whyRejected(path),
              "the log can't be read, and, being no regular file, not a second time to find out why");
}

TEST_F(LogDiagnosis, NamesTheChunkAndTheCheck) {
    const std::string chunk = soundLog().substr(4);
    const std::string start = soundLog() + soundLog();
    const auto bent = [&chunk](std::size_t position, char byte) {
        std::string bytes = chunk;
        bytes.at(position) = byte;
        return withPrefix(bytes);
    };
    const std::size_t nameEnd = chunk.find("generator") + 9;
    const std::string cutOff = "is cut off at the end of the file: only ";
    const std::string there = " bytes of it are there";
    const struct {
        std::string tail;
        std::size_t length;
        std::string words;
    } cases[] = {
        {prefixOf(0), 0, "is too short to be a chunk"},
        {withPrefix(chunk.substr(0, 11)), 11, "is too short to be a chunk"},
        {soundLog().substr(0, 10), chunk.size(), cutOff + "6" + there},
        {prefixOf(20), 20, cutOff + "0" + there},
        {prefixOf(0xFFFFFFFFU) + chunk, 0xFFFFFFFFU, cutOff + std::to_string(chunk.size()) + there},
        {bent(3, '\x7F'), chunk.size(), "has a root offset that leads out of it"},
        {bent(nameEnd, 'x'), chunk.size(),
         "fails verification: a table, vector or string in it is malformed"},
    };
    for (const auto& [tail, length, words] : cases) {
        EXPECT_EQ(whyRejected(files.write("run.log", start + tail)),
                  "the log can't be read: chunk 3 at byte " + std::to_string(start.size()) + ", " +
                      std::to_string(length) + " bytes long, " + words);
    }
    EXPECT_EQ(whyRejected(files.write("run.log", start + "xx")),
              "the log can't be read, though all of its chunks are sound");
    EXPECT_EQ(whyRejected(files.path("gone.log")), "the log can't be read: No such file or directory");
}

// The one regular file that fails at a known place.
TEST_F(LogDiagnosis, DoesNotTakeAReadErrorForTheEnd) {
    const std::string failing = "/proc/self/mem";
    EXPECT_EQ(trouble(failing), "the log can't be read: Input/output error");
    EXPECT_EQ(whyEndedEarly(failing), "the log can't be read beyond byte 0: Input/output error");
    EXPECT_EQ(whyRejected(failing), "the log can't be read beyond byte 0: Input/output error");
    EXPECT_EQ(whyEndedEarly(files.path("gone.log")), std::nullopt);
    const std::string cut = files.write("run.log", soundLog().substr(0, 10));
    test::badByte = 10;
    EXPECT_EQ(whyRejected(cut),
              "the log can't be read: chunk 1 at byte 0, " + std::to_string(soundLog().size() - 4) +
                  " bytes long, can't be read beyond its first 6 bytes: Input/output error");
    test::badByte.reset();
    for (const char* const tail : {"", "xx"}) {
        EXPECT_EQ(whyEndedEarly(files.write("run.log", soundLog() + prefixOf(0) + tail)), std::nullopt);
    }
}

// Lengths that come many at a time, that stand across two such reads, and behind long chunks.
TEST_F(LogDiagnosis, FindsEveryLengthInFewReads) {
    std::string log;
    std::vector<std::size_t> offsets;
    for (const std::uint32_t length : {0U, 1U, 65536U, 65529U, 0U, 70000U, 200000U, 65524U, 3U}) {
        for (int each = 0; each < 3; ++each) {
            offsets.push_back(log.size());
            log += withPrefix(std::string(length, '\xFF'));
        }
    }
    const std::string path = files.write("run.log", log);
    test::reads = 0;
    EXPECT_EQ(whyEndedEarly(path), std::nullopt);
    EXPECT_LE(test::reads, 22);
    for (const std::size_t offset : offsets) {
        test::badByte = static_cast<std::int64_t>(offset);
        EXPECT_EQ(whyEndedEarly(path),
                  "the log can't be read beyond byte " + std::to_string(offset) + ": Input/output error");
    }
    test::badByte.reset();
    const std::string small = files.write("small.log", std::string(400000, '\0'));
    test::reads = 0;
    EXPECT_EQ(whyEndedEarly(small), std::nullopt);
    EXPECT_LE(test::reads, 8);
}

}  // namespace
}  // namespace zeb::command
