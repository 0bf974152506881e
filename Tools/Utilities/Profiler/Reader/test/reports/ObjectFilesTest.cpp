#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "reports/ObjectFiles.h"
#include "support/TestLog.h"

namespace zeb::profiling {
namespace {

namespace fs = std::filesystem;
using test::CaughtLog;
using Lines = std::vector<std::string>;

class ObjectFilesTest : public testing::Test {
protected:
    void save(const std::string& path, std::string_view content) {
        const EventObject object{std::as_bytes(std::span(content)), path, {}};
        files.writeObjectFile({{}, 0, EventUnit::object, &object, {}});
    }
    void saveHere(std::string_view fileName, std::string_view content) {
        save(directory.path(fileName), content);
    }
    [[nodiscard]] std::string text(std::string_view fileName) const {
        return test::fileText(directory.path(fileName));
    }
    [[nodiscard]] std::string failure(std::string_view fileName) const {
        return "1 Invalid output fileName: [" + directory.path(fileName) + "]";
    }
    [[nodiscard]] std::size_t fileCount() const {
        using Entries = fs::recursive_directory_iterator;
        return static_cast<std::size_t>(std::distance(Entries(directory.directory()), Entries()));
    }

    test::TempDir directory;
    ObjectFiles files;
};

TEST_F(ObjectFilesTest, NumbersNamesThatAreTakenAndKeepsEveryByte) {
    fs::create_directories(directory.path("dir.old"));
    fs::create_directories(directory.path("dir_1.old"));
    const std::string bytes("\0\r\n\xFF\x1A", 5);
    const std::pair<const char*, const char*> cases[] = {{"plain", "plain_1"},
                                                         {"b.tar.gz", "b.tar_1.gz"},
                                                         {".hidden", "_1.hidden"},
                                                         {"point.", "point_1."},
                                                         {"dir.old/data", "dir_1.old/data"}};
    for (const auto& [name, second] : cases) {
        saveHere(name, {});  // no bytes, and no address of them
        EXPECT_TRUE(fs::exists(directory.path(name)));
        saveHere(name, bytes);
        EXPECT_EQ(text(name), "");
        EXPECT_EQ(text(second), bytes);
    }
}

TEST_F(ObjectFilesTest, NeverTouchesWhatIsThere) {
    directory.write("a.bin", "old");
    directory.write("a_2.bin", "old");
    fs::permissions(directory.path("a.bin"), fs::perms::none);  // not even one that can't be read
    fs::create_symlink(directory.path("elsewhere"), directory.path("a_1.bin"));
    fs::create_directory(directory.path("a_3.bin"));
    saveHere("a.bin", "new");
    fs::create_directory(directory.path("isdir"));
    saveHere("isdir/", "new");
    fs::permissions(directory.path("a.bin"), fs::perms::owner_read);
    EXPECT_EQ(text("a.bin") + text("a_2.bin") + text("a_4.bin") + text("isdir/_1"), "oldoldnewnew");
    EXPECT_FALSE(fs::exists(directory.path("elsewhere")));
}

TEST_F(ObjectFilesTest, LogsAFileThatCannotBeMadeAndPassesOverAnEventWithoutAName) {
    fs::create_directory(directory.path("out.d"));
    directory.write("out.d/data", "old");
    const CaughtLog log;
    save("", "content");
    files.writeObjectFile({});
    EXPECT_EQ(log.lines(), Lines{});
    for (const char* const name : {"missing/a", "missing/", "out.d/data/", "out.d/data/a", "out.d/data"}) {
        saveHere(name, "content");
    }
    EXPECT_EQ(log.lines(), (Lines{failure("missing/a"), failure("missing/"), failure("out.d/data/"),
                                  failure("out.d/data/a"), failure("out_1.d/data")}));
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(ObjectFilesTest, TellsOfAFileThatIsNotWrittenWhole) {
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit limit{100, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const CaughtLog log;
    saveHere("whole.bin", std::string(100, 'x'));
    saveHere("cut.bin", std::string(101, 'x'));
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    static_cast<void>(std::signal(SIGXFSZ, oldHandler));
    EXPECT_EQ(log.lines(), Lines{failure("cut.bin")});
    EXPECT_EQ(text("cut.bin").size(), 100U);
}

}  // namespace
}  // namespace zeb::profiling
