#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "reader/ObjectFiles.h"
#include "support/TestLog.h"

namespace zeb::profiling {
namespace {

namespace fs = std::filesystem;
using test::CaughtLog;
using test::fileText;
using Lines = std::vector<std::string>;

class ObjectFilesTest : public testing::Test {
protected:
    void save(const std::string& fileName, const std::string& content) {
        const EventObject object{std::as_bytes(std::span(content)), fileName};
        ProfileEvent event;
        event.unit = EventUnit::object;
        event.object = &object;
        files.write(event);
    }
    void saveHere(std::string_view fileName, const std::string& content) {
        save(directory.path(fileName), content);
    }
    [[nodiscard]] std::string text(std::string_view fileName) const {
        return fileText(directory.path(fileName));
    }
    [[nodiscard]] std::size_t fileCount() const {
        using Entries = fs::recursive_directory_iterator;
        return static_cast<std::size_t>(std::distance(Entries(directory.directory()), Entries()));
    }
    void occupy(std::string_view fileName) const { directory.write(fileName, {'o', 'l', 'd'}); }

    test::TempDir directory;
    ObjectFiles files;
};

TEST_F(ObjectFilesTest, NumbersNamesThatAreTaken) {
    const struct {
        const char* name;
        const char* second;
        const char* third;
    } cases[] = {
        {"a.bin", "a_1.bin", "a_2.bin"},          {"plain", "plain_1", "plain_2"},
        {"b.tar.gz", "b.tar_1.gz", "b.tar_2.gz"}, {".hidden", "_1.hidden", "_2.hidden"},
        {"point.", "point_1.", "point_2."},
    };
    for (const auto& [name, second, third] : cases) {
        for (const char* const content : {"one", "two", "three"}) {
            saveHere(name, content);
        }
        EXPECT_EQ(text(name), "one");
        EXPECT_EQ(text(second), "two");
        EXPECT_EQ(text(third), "three");
    }
}

TEST_F(ObjectFilesTest, NumbersADirectoryWhenTheLastPointIsThere) {
    fs::create_directories(directory.path("dir.old"));
    fs::create_directories(directory.path("dir_1.old"));
    saveHere("dir.old/data", "one");
    saveHere("dir.old/data", "two");
    EXPECT_EQ(text("dir.old/data"), "one");
    EXPECT_EQ(text("dir_1.old/data"), "two");
}

TEST_F(ObjectFilesTest, NeverTouchesWhatIsThere) {
    occupy("a.bin");
    occupy("a_2.bin");
    fs::permissions(directory.path("a.bin"), fs::perms::none);  // not even one that can't be read
    fs::create_symlink(directory.path("elsewhere"), directory.path("a_1.bin"));
    fs::create_directory(directory.path("a_3.bin"));
    saveHere("a.bin", "new");
    fs::permissions(directory.path("a.bin"), fs::perms::owner_read);
    EXPECT_EQ(text("a.bin"), "old");
    EXPECT_EQ(text("a_2.bin"), "old");
    EXPECT_EQ(text("a_4.bin"), "new");
    EXPECT_FALSE(fs::exists(directory.path("elsewhere")));
}

TEST_F(ObjectFilesTest, KeepsEveryByteAndMakesEmptyFiles) {
    const std::string bytes("\0\r\n\xFF\x1A", 5);
    saveHere("bytes", bytes);
    saveHere("empty", "");
    EXPECT_EQ(text("bytes"), bytes);
    EXPECT_TRUE(fs::exists(directory.path("empty")));
    EXPECT_EQ(fs::file_size(directory.path("empty")), 0U);
}

TEST_F(ObjectFilesTest, PassesOverAnEventWithoutAFileName) {
    const CaughtLog log;
    save("", "content");
    files.write({});
    EXPECT_EQ(log.lines(), Lines{});
    EXPECT_EQ(fileCount(), 0U);
}

TEST_F(ObjectFilesTest, LogsAFileThatCannotBeMade) {
    occupy("file");
    for (const char* const name : {"missing/a.bin", "file/a.bin"}) {
        const CaughtLog log;
        saveHere(name, "content");
        saveHere(name, "content");
        const std::string line = "1 Invalid output fileName: [" + directory.path(name) + "]";
        EXPECT_EQ(log.lines(), (Lines{line, line}));
    }
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(ObjectFilesTest, LogsTheNumberedNameThatCannotBeMade) {
    fs::create_directory(directory.path("out.d"));
    occupy("out.d/data");
    const CaughtLog log;
    saveHere("out.d/data", "content");
    EXPECT_EQ(log.lines(), Lines{"1 Invalid output fileName: [" + directory.path("out_1.d/data") + "]"});
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
    EXPECT_EQ(log.lines(), Lines{"1 Invalid output fileName: [" + directory.path("cut.bin") + "]"});
}

}  // namespace
}  // namespace zeb::profiling
