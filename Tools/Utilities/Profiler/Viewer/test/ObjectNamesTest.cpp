// Which object names a log may have when its objects are saved.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "LogWriter.h"
#include "ObjectDirectory.h"
#include "ObjectNames.h"
#include "support/FailureOf.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

namespace fs = std::filesystem;

using samplelog::Event;

Event object(const std::string& fileName, std::uint32_t unit = samplelog::object) {
    return {"object", {}, unit, 0, fileName, {}, {}};
}

// A log with a chunk for each event.
std::string logOf(const std::vector<Event>& events) {
    std::ostringstream bytes;
    samplelog::LogWriter writer(bytes);
    for (const Event& event : events) {
        writer.add({samplelog::MethodType::GraphEvents, "net", {}, 0, {event}, 0});
        writer.finishChunk();
    }
    return bytes.str();
}

// A directory for objects, with a directory and links in it.
class ObjectNames : public testing::Test {
protected:
    ObjectNames() {
        fs::create_directories(objects + "/sub/deep");
        fs::create_directory(files.path("outside"));
        fs::create_directory(files.path("objects-2"));
        fs::create_directory_symlink(files.path("outside"), objects + "/out");
        fs::create_directory_symlink(files.path("objects-2"), objects + "/sibling");
        fs::create_directory_symlink("sub/deep", objects + "/in");
        fs::create_directory_symlink("loop", objects + "/loop");
        fs::create_symlink(files.path("outside/file"), objects + "/file-link");
    }

    // The failure without the log's path, which stands behind its exit code.
    std::string checking(const std::string& bytes) const {
        const std::string log = files.write("run.log", bytes);
        std::string failure = test::failureOf([&] { checkObjectNames(log, objects); });
        return failure.empty() ? "" : failure.replace(failure.find(" " + log), log.size() + 2, "");
    }
    std::string leadsOut(const std::string& name, const std::string& chunk = "1") const {
        return "1 chunk " + chunk + ": the object \"" + name + "\" would be saved outside of " + objects +
               "; --trust-object-names allows it";
    }

    test::TempDir files;
    std::string objects = (fs::canonical(files.path("")) / "objects").string();
};

TEST_F(ObjectNames, MayStayInTheDirectory) {
    const std::string longest(255, 'n');
    for (const std::string name : {"a.bin", "", "..a", "a..", "...", ".", "./a", "sub/a.bin", "sub//deep/./a",
                                   "in/a", "file-link", "sub", "a\nb", longest.c_str()}) {
        EXPECT_EQ(checking(logOf({object(name)})), "") << name;
    }
}

TEST_F(ObjectNames, MayNotLeadOut) {
    const std::string inside = objects + "/a";
    for (const std::string name : {"/etc/a", "//a", "/", "..", "../a", "sub/../a", "sub/..", "no/../../a",
                                   "./../a", "out/a", "in/../../../a", "sibling/a", inside.c_str()}) {
        for (const auto unit : {samplelog::object, samplelog::cycles}) {
            EXPECT_EQ(checking(logOf({object(name, unit)})), leadsOut(name)) << name;
        }
    }
    const std::string longName = "/" + std::string(1000, 'n');
    EXPECT_EQ(checking(logOf({object(longName)})), leadsOut(longName.substr(0, 200) + "..."));
    using namespace std::string_literals;
    EXPECT_EQ(checking(logOf({object("a\0/../../b"s)})), "") << "a name ends at its first NUL";
    EXPECT_EQ(checking(logOf({object("/a\0b"s)})), leadsOut("/a"));
}

TEST_F(ObjectNames, AreLookedAtInAllChunksAndAtAllDepths) {
    Event tree = object("/a", samplelog::none);
    for (int level = 1; level < 62; ++level) {
        Event parent = object("fine");
        parent.subEvents = {object("fine"), tree};
        tree = parent;
    }
    EXPECT_EQ(checking(logOf({object("fine"), {}, tree})), leadsOut("/a", "3"));
    EXPECT_EQ(checking(test::sharedEventsLog("/a")), leadsOut("/a"));
    EXPECT_EQ(checking(test::sharedEventsLog("sub/a")), "");
}

TEST_F(ObjectNames, MustStandForAFileThatCanBeMade) {
    const std::string tooLong(256, 'n');
    const std::string cannot = "\" can't be saved in " + objects + ":";
    const std::pair<std::string, std::string> cases[] = {
        {"no/a", "no/a" + cannot + " No such file or directory"},
        {"file-link/a", "file-link/a" + cannot + " No such file or directory"},
        {"loop/a", "loop/a" + cannot + " Too many levels of symbolic links"},
        {"sub/", "sub/" + cannot + " Is a directory"},
        {tooLong, tooLong.substr(0, 200) + "..." + cannot + " File name too long"},
    };
    for (const auto& [name, words] : cases) {
        EXPECT_EQ(checking(logOf({object(name)})), "3 chunk 1: the object \"" + words);
        EXPECT_EQ(checking(logOf({object(name, samplelog::bytes)})), "") << "no file is made of it";
    }
}

TEST_F(ObjectNames, OfADamagedLogAreLookedAtUpToTheDamage) {
    const std::string log = logOf({object("/a")});
    EXPECT_EQ(checking(log + "xxxx"), leadsOut("/a"));
    EXPECT_EQ(checking(log.substr(0, log.size() - 1)), "");
    EXPECT_EQ(checking(test::prefixOf(12) + std::string(12, '\xFF') + log), "");
    EXPECT_EQ(checking(""), "");
}

TEST_F(ObjectNames, NeedADirectoryThatCanBeWritten) {
    EXPECT_EQ(ObjectDirectory(objects + "/in").path(), objects + "/sub/deep");
    ASSERT_EQ(::chmod(files.path("").c_str(), 0755) + ::chmod(objects.c_str(), 0555), 0);
    const test::OrdinaryUser user;
    EXPECT_EQ(test::failureOf([this] { const ObjectDirectory directory(objects); }),
              "3 " + objects + ": objects can't be saved there: Permission denied");
}

}  // namespace
}  // namespace zeb::viewer
