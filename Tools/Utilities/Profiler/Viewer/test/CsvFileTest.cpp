// A CSV file gets the whole report or stays as it was.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): setenv
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <thread>

#include "support/FailureOf.h"
#include "support/SystemFaults.h"
#include "support/TestChunks.h"
#include "viewer/CsvFile.h"

namespace zeb::viewer {
namespace {

namespace test = command::test;

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
    // Appends the bytes as a reader and the viewer would.
    static void append(const std::string& csv, const std::string& bytes) {
        const CsvSpool spool(csv);
        std::ofstream(spool.path(), std::ios::app) << bytes;
        appendToFile(csv, spool);
    }
    static std::string appending(const std::string& csv, const std::string& bytes) {
        return failureOf([&] { append(csv, bytes); });
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

// To see whether there is room for more, some is written behind the report.
TEST_F(CsvFile, IsMadeOfAReportThatLooksForRoomAndLeavesNoTrace) {
    const CsvSpool spool(path);
    for (const std::size_t size : {0U, 5U, 70000U}) {
        const std::string report(size, 'r');
        std::ofstream(spool.path()) << report;
        EXPECT_EQ(spool.size(), size);
        EXPECT_EQ(spool.size(), size);
        EXPECT_EQ(fileText(spool.path()), report);
    }
}

// The limit is met by the report while it is made, or by the file. A report of just its size is whole.
TEST_F(CsvFile, IsAsBeforeWhenAFileMayNotBeThatLarge) {
    const auto appendingUnder = [this](rlim_t limit, std::size_t size) {
        return failureUnderLimit(limit, [&] { append(path, std::string(size, 'n')); });
    };
    const std::string cutOff = "3 " + path + ": the CSV report can't be written in " +
                               files.directory().string() + ", where it is made first: File too large";
    EXPECT_EQ(appendingUnder(1500, 2000), cutOff);
    EXPECT_FALSE(fs::exists(path));
    const std::string old(1000, 'o');
    files.write("runs.csv", old);
    EXPECT_EQ(appendingUnder(1500, 2000), cutOff);
    EXPECT_EQ(appendingUnder(1500, 600), failed(path, "File too large"));
    EXPECT_EQ(fileText(path), old);
    EXPECT_EQ(appendingUnder(1600, 600), "");
    EXPECT_EQ(fs::file_size(path), 1600);
}

TEST_F(CsvFile, IsAsBeforeWhenADiskFillsUp) {
    const std::string disk = files.path("disk");
    fs::create_directory(disk);
    if (::mount("none", disk.c_str(), "tmpfs", 0, "size=256K") != 0) {
        GTEST_SKIP() << "no file system of its own";
    }
    const std::string full = disk + "/runs.csv";
    ::setenv("TMPDIR", files.directory().c_str(), 1);
    EXPECT_EQ(appending(full, std::string(200000, 'o')), "");
    EXPECT_EQ(appending(full, std::string(200000, 'n')), failed(full, "No space left on device"));
    EXPECT_EQ(fileText(full), std::string(200000, 'o'));
    const std::string fresh = disk + "/fresh.csv";
    EXPECT_EQ(appending(fresh, std::string(200000, 'n')), failed(fresh, "No space left on device"));
    EXPECT_FALSE(fs::exists(fresh)) << "was not there before";
    ::setenv("TMPDIR", disk.c_str(), 1);
    EXPECT_EQ(appending("/dev/null", std::string(200000, 'n')),
              "3 /dev/null: the CSV report can't be written in " + disk +
                  ", where it is made first: No space left on device");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(::umount(disk.c_str()), 0);
}

// Some file systems tell on closing only that there was no room.
TEST_F(CsvFile, IsAsBeforeWhenItIsClosingThatFails) {
    for (const auto& old : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("old\n")}) {
        if (old) {
            files.write("runs.csv", *old);
        }
        test::nextCloseFails = true;
        EXPECT_EQ(appending(path, "new\n"), failed(path, "Disk quota exceeded"));
        EXPECT_EQ(fs::exists(path), old.has_value());
        EXPECT_EQ(fileText(path), old.value_or(""));
    }
}

// Somebody who doesn't ask for the lock appends as soon as there is room for the report.
TEST_F(CsvFile, KeepsWhatSomebodyAppendsMeanwhile) {
    for (const bool fails : {false, true}) {
        files.write("runs.csv", "old\n");
        test::nextCloseFails = fails;
        test::beforeClose = [this] { std::ofstream(path, std::ios::app) << "theirs\n"; };
        EXPECT_EQ(appending(path, "mine\n"),
                  fails ? failed(path, "Disk quota exceeded") + "; a part of it was written" : "");
        EXPECT_EQ(fileText(path), "old\nmine\ntheirs\n");
    }
}

// The other one, who holds the lock, appends a row, or removes the file that it has created.
TEST_F(CsvFile, WaitsForTheOneWhoIsWriting) {
    for (const bool isRemoved : {false, true}) {
        files.write("runs.csv", "first\n");
        const command::FileDescriptor other(::open(path.c_str(), O_WRONLY | O_APPEND));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        std::thread waiting([this] { append(path, "third\n"); });
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
        append(path, report);
        ::_exit(0);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (fs::file_size(path) == 4 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    ASSERT_EQ(::kill(writer, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    EXPECT_EQ(fileText(path), "old\n" + report);
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

TEST_F(CsvFile, MayBeAPipe) {
    const std::string report(300000, 'r');
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { EXPECT_EQ(appending(path, report), ""); });
    EXPECT_EQ(fileText(path), report);
    writer.join();
    // The check leaves it alone: nobody reads it, and opening it would wait for somebody.
    EXPECT_EQ(checking(path), "");
}

}  // namespace
}  // namespace zeb::viewer
