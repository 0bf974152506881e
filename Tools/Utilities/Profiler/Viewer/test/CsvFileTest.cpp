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
#include "Failure.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

using test::fileText;
using test::TempDir;

// Lets no file grow beyond a size, for as long as it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old_);
        static_cast<void>(std::signal(SIGXFSZ, oldHandler_));
    }

private:
    rlimit old_{};
    void (*oldHandler_)(int);
};

class CsvFile : public testing::Test {
protected:
    // The failure's text behind the path, with its exit code in front; empty when there is none.
    template <typename Call>
    static std::string failureOf(const std::string& path, Call call) {
        try {
            call();
        } catch (const Failure& failure) {
            const std::string text = failure.what();
            return std::to_string(static_cast<int>(failure.exitCode())) + " " +
                   (text.starts_with(path + ": ") ? text.substr(path.size() + 2) : text);
        }
        return "";
    }
    static std::string appending(const std::string& path, const std::string& bytes) {
        return failureOf(path, [&] { appendToFile(path, bytes); });
    }
    std::string checking(const std::string& path) const {
        return failureOf(path, [&] { checkCsvPath(path, files.path("run.log")); });
    }

    TempDir files;
};

TEST_F(CsvFile, IsCreatedAndAppendedTo) {
    const std::string path = files.path("runs.csv");
    EXPECT_EQ(appending(path, "first\n"), "");
    EXPECT_EQ(appending(path, "second\n"), "");
    EXPECT_EQ(fileText(path), "first\nsecond\n");
}

TEST_F(CsvFile, IsCreatedWhereALinkLeads) {
    std::filesystem::create_symlink("target.csv", files.path("link.csv"));
    EXPECT_EQ(appending(files.path("link.csv"), "row\n"), "");
    EXPECT_EQ(fileText(files.path("target.csv")), "row\n");
}

TEST_F(CsvFile, KeepsItsBytesWhenTheDiskFillsUp) {
    const std::string old(1000, 'o');
    const std::string path = files.write("runs.csv", old);
    {
        const FileSizeLimit limit(1500);
        EXPECT_EQ(appending(path, std::string(1000, 'n')), "3 the CSV file can't be written: File too large");
    }
    EXPECT_EQ(fileText(path), old);
}

TEST_F(CsvFile, IsRemovedWhenItIsNewAndCannotBeWritten) {
    const std::string path = files.path("runs.csv");
    {
        const FileSizeLimit limit(500);
        EXPECT_EQ(appending(path, std::string(1000, 'n')), "3 the CSV file can't be written: File too large");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(CsvFile, TellsWhyItCannotBeWritten) {
    EXPECT_EQ(appending("/dev/full", "row\n"), "3 the CSV file can't be written: No space left on device");
    EXPECT_EQ(appending(files.path(""), "row\n"), "3 the CSV file can't be written: Is a directory");
    EXPECT_EQ(appending(files.path("no/runs.csv"), "row\n"),
              "3 the CSV file can't be written: No such file or directory");
}

TEST_F(CsvFile, WaitsForTheOneWhoIsWriting) {
    const std::string path = files.write("runs.csv", "first\n");
    const FileDescriptor other(::open(path.c_str(), O_WRONLY | O_APPEND));
    ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
    std::thread waiting([&path] { appendToFile(path, "third\n"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(::write(other.get(), "second\n", 7), 7);
    EXPECT_EQ(::flock(other.get(), LOCK_UN), 0);
    waiting.join();
    EXPECT_EQ(fileText(path), "first\nsecond\nthird\n");
}

TEST_F(CsvFile, IsMadeAnewWhenTheOneWhoWasWritingHasRemovedIt) {
    const std::string path = files.write("runs.csv", "");
    const FileDescriptor other(::open(path.c_str(), O_WRONLY | O_APPEND));
    ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
    std::thread waiting([&path] { appendToFile(path, "row\n"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::filesystem::remove(path);
    EXPECT_EQ(::flock(other.get(), LOCK_UN), 0);
    waiting.join();
    EXPECT_EQ(fileText(path), "row\n");
}

TEST_F(CsvFile, HasAllOrNothingOfAReportWhoseWriterIsInterrupted) {
    constexpr std::size_t reportSize = 64 << 20U;
    const std::string path = files.write("runs.csv", "old\n");
    const std::string report(reportSize, 'n');
    const pid_t writer = ::fork();
    if (writer == 0) {
        appendToFile(path, report);
        ::_exit(0);
    }
    while (std::filesystem::file_size(path) == 4) {
    }
    ASSERT_EQ(::kill(writer, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    EXPECT_EQ(std::filesystem::file_size(path), 4 + reportSize);
}

TEST_F(CsvFile, IsCheckedWithoutBeingTouched) {
    const std::string log = files.write("run.log", "log");
    std::filesystem::create_symlink(log, files.path("link.csv"));
    EXPECT_EQ(checking(files.path("new.csv")), "");
    EXPECT_FALSE(std::filesystem::exists(files.path("new.csv")));
    EXPECT_EQ(checking(files.write("old.csv", "row\n")), "");
    EXPECT_EQ(fileText(files.path("old.csv")), "row\n");
    EXPECT_EQ(checking("/dev/full"), "");
    EXPECT_EQ(checking(files.path("")), "3 the CSV file can't be written: Is a directory");
    EXPECT_EQ(checking(files.path("no/new.csv")),
              "3 the CSV file can't be created in " + files.path("no") + ": No such file or directory");
    EXPECT_EQ(checking(log + "/new.csv"), "3 the CSV file can't be written: Not a directory");
    EXPECT_EQ(checking(files.path("link.csv")), "2 the CSV file is the log itself");
}

TEST_F(CsvFile, IsWrittenInMemoryFirst) {
    const CsvBuffer buffer("runs.csv");
    EXPECT_EQ(buffer.content(), "");
    std::ofstream(buffer.memoryPath(), std::ios::app) << "row 1\n";
    std::ofstream(buffer.memoryPath(), std::ios::app) << "row 2\n";
    EXPECT_EQ(buffer.content(), "row 1\nrow 2\n");
}

TEST_F(CsvFile, IsNotTakenFromMemoryWhenItIsCutOffThere) {
    const FileSizeLimit limit(500);
    const CsvBuffer buffer("runs.csv");
    std::ofstream(buffer.memoryPath(), std::ios::app) << std::string(1000, 'x');
    EXPECT_EQ(failureOf("runs.csv", [&] { static_cast<void>(buffer.content()); }),
              "3 the CSV file can't be written: File too large");
}

}  // namespace
}  // namespace zeb::viewer
