// A CSV file gets the whole report or stays as it was.

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "CsvFile.h"
#include "support/FailureOf.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

namespace fs = std::filesystem;
using test::failureOf;
using test::fileText;

// Makes the call while no file may grow beyond a size.
std::string failureUnderLimit(rlim_t bytes, const std::function<void()>& call) {
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const rlimit limit{bytes, old.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::string failure = failureOf(call);
    ::setrlimit(RLIMIT_FSIZE, &old);
    static_cast<void>(std::signal(SIGXFSZ, handler));
    return failure;
}

class CsvFile : public testing::Test {
protected:
    static std::string appending(const std::string& csv, const std::string& bytes) {
        return failureOf([&] { appendToFile(csv, bytes); });
    }
    std::string checking(const std::string& csv) const {
        return failureOf([&] { checkCsvPath(csv, files.path("run.log")); });
    }
    static std::string failed(const std::string& csv, const std::string& cause) {
        return "3 " + csv + ": the CSV file can't be written: " + cause;
    }

    test::TempDir files;
    std::string path = files.path("runs.csv");
    std::string missing = files.path("no/runs.csv");
};

TEST_F(CsvFile, IsCreatedWhereALinkLeadsAndAppendedTo) {
    fs::create_symlink("target.csv", path);
    EXPECT_EQ(appending(path, "first\n"), "");
    EXPECT_EQ(appending(files.path("target.csv"), "second\n"), "");
    EXPECT_EQ(fileText(path), "first\nsecond\n");
}

TEST_F(CsvFile, IsAsBeforeWhenTheDiskFillsUp) {
    const std::string old(1000, 'o');
    const auto append = [this] { appendToFile(path, std::string(2000, 'n')); };
    EXPECT_EQ(failureUnderLimit(1500, append), failed(path, "File too large"));
    EXPECT_FALSE(fs::exists(path));
    files.write("runs.csv", old);
    EXPECT_EQ(failureUnderLimit(1500, append), failed(path, "File too large"));
    EXPECT_EQ(fileText(path), old);
}

// The other one, who holds the lock, appends a row, or removes the file that it has created.
TEST_F(CsvFile, WaitsForTheOneWhoIsWriting) {
    for (const bool isRemoved : {false, true}) {
        files.write("runs.csv", "first\n");
        const FileDescriptor other(::open(path.c_str(), O_WRONLY | O_APPEND));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        std::thread waiting([this] { appendToFile(path, "third\n"); });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(::write(other.get(), "second\n", 7), 7);
        EXPECT_EQ(isRemoved, isRemoved && fs::remove(path));
        EXPECT_EQ(::flock(other.get(), LOCK_UN), 0);
        waiting.join();
        EXPECT_EQ(fileText(path), isRemoved ? "third\n" : "first\nsecond\nthird\n");
    }
}

TEST_F(CsvFile, HasAllOrNothingOfAReportWhoseWriterIsInterrupted) {
    constexpr std::size_t reportSize = 64 << 20U;
    files.write("runs.csv", "old\n");
    const std::string report(reportSize, 'n');
    const pid_t writer = ::fork();
    if (writer == 0) {
        appendToFile(path, report);
        ::_exit(0);
    }
    while (fs::file_size(path) == 4) {
    }
    ASSERT_EQ(::kill(writer, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    EXPECT_EQ(fs::file_size(path), 4 + reportSize);
}

TEST_F(CsvFile, TellsWhyItCannotBeWritten) {
    EXPECT_EQ(appending("/dev/full", "row\n"), failed("/dev/full", "No space left on device"));
    EXPECT_EQ(appending(files.path(""), "row\n"), failed(files.path(""), "Is a directory"));
    EXPECT_EQ(appending(missing, "row\n"), failed(missing, "No such file or directory"));
}

TEST_F(CsvFile, IsCheckedWithoutBeingTouched) {
    const std::string log = files.write("run.log", "log");
    fs::create_symlink(log, files.path("link.csv"));
    EXPECT_EQ(checking(path), "");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(checking(files.write("old.csv", "row\n")), "");
    EXPECT_EQ(fileText(files.path("old.csv")), "row\n");
    EXPECT_EQ(checking("/dev/full"), "");
    EXPECT_EQ(checking(files.path("")), failed(files.path(""), "Is a directory"));
    EXPECT_EQ(checking(missing), "3 " + missing + ": the CSV file can't be created in " + files.path("no") +
                                     ": No such file or directory");
    EXPECT_EQ(checking(log + "/new.csv"), failed(log + "/new.csv", "Not a directory"));
    EXPECT_EQ(checking(files.path("link.csv")),
              "2 " + files.path("link.csv") + ": the CSV file is the log itself");
}

TEST_F(CsvFile, IsWrittenInMemoryFirstAndNotTakenWhenItIsCutOffThere) {
    const CsvBuffer buffer(path);
    const auto write = [&buffer](const std::string& bytes) {
        std::ofstream(buffer.memoryPath(), std::ios::app) << bytes;
    };
    write("row 1\n");
    write("row 2\n");
    EXPECT_EQ(buffer.content(), "row 1\nrow 2\n");
    EXPECT_EQ(failureUnderLimit(500,
                                [&] {
                                    write(std::string(1000, 'x'));
                                    static_cast<void>(buffer.content());
                                }),
              failed(path, "File too large"));
}

}  // namespace
}  // namespace zeb::viewer
