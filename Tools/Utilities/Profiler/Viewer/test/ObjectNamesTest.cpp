// Which object names a log may have when its objects are saved.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "Failure.h"
#include "LogWriter.h"
#include "ObjectDirectory.h"
#include "ObjectNames.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

namespace fs = std::filesystem;

using samplelog::Event;
using samplelog::Message;
using test::OrdinaryUser;
using test::TempDir;

Message messageWith(const Event& event) {
    return {samplelog::MethodType::GraphEvents, "net", {}, 0, {event}, 0};
}

Event object(const std::string& fileName, std::uint32_t unit = samplelog::object) {
    Event event;
    event.fileName = fileName;
    event.unit = unit;
    return event;
}

// A log with a chunk for each event.
std::string logOf(const std::vector<Event>& events) {
    std::ostringstream bytes;
    samplelog::LogWriter writer(bytes);
    for (const Event& event : events) {
        writer.add(messageWith(event));
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

    // The failure's text behind the log's path, with its exit code in front; empty when there is none.
    std::string checking(const std::string& bytes) const {
        const std::string log = files.write("run.log", bytes);
        try {
            checkObjectNames(log, objects);
        } catch (const Failure& failure) {
            const std::string text = failure.what();
            EXPECT_TRUE(text.starts_with(log + ": ")) << text;
            return std::to_string(static_cast<int>(failure.exitCode())) + " " + text.substr(log.size() + 2);
        }
        return "";
    }
    std::string leadsOut(const std::string& chunk, const std::string& name) const {
        return "1 chunk " + chunk + ": the object \"" + name + "\" would be saved outside of " + objects +
               "; --trust-object-names allows it";
    }
    std::string cannotBeSaved(const std::string& name, const std::string& cause) const {
        return "3 chunk 1: the object \"" + name + "\" can't be saved in " + objects + ": " + cause;
    }

    TempDir files;
    std::string objects = (fs::canonical(files.path("")) / "objects").string();
};

TEST_F(ObjectNames, MayStayInTheDirectory) {
    for (const std::string name : {"a.bin", "", "..a", "a..", "...", ".", "./a", "sub/a.bin", "sub//deep/./a",
                                   "in/a", "file-link", "sub", "a\nb", " "}) {
        EXPECT_EQ(checking(logOf({object(name)})), "") << name;
    }
    EXPECT_EQ(checking(logOf({object(std::string(255, 'n'))})), "");
}

TEST_F(ObjectNames, MayNotLeadOut) {
    const std::string inside = objects + "/a";
    for (const std::string name : {"/etc/a", "//a", "/", "..", "../a", "sub/../a", "sub/..", "no/../../a",
                                   "./../a", "out/a", "in/../../../a", "sibling/a", inside.c_str()}) {
        for (const auto unit : {samplelog::object, samplelog::cycles}) {
            EXPECT_EQ(checking(logOf({object(name, unit)})), leadsOut("1", name)) << name;
        }
    }
    const std::string longName = "/" + std::string(1000, 'n');
    EXPECT_EQ(checking(logOf({object(longName)})), leadsOut("1", longName.substr(0, 200) + "..."));
    using namespace std::string_literals;
    EXPECT_EQ(checking(logOf({object("a\0/../../b"s)})), "") << "a name ends at its first NUL";
    EXPECT_EQ(checking(logOf({object("/a\0b"s)})), leadsOut("1", "/a"));
}

TEST_F(ObjectNames, AreLookedAtInAllChunksAndAtAllDepths) {
    Event tree = object("/a", samplelog::none);
    for (int level = 1; level < 62; ++level) {
        Event parent = object("fine");
        parent.subEvents = {object("fine"), tree};
        tree = parent;
    }
    EXPECT_EQ(checking(logOf({object("fine"), {}, tree})), leadsOut("3", "/a"));
    EXPECT_EQ(checking(test::sharedEventsLog("/a")), leadsOut("1", "/a"));
    EXPECT_EQ(checking(test::sharedEventsLog("sub/a")), "");
}

TEST_F(ObjectNames, MustStandForAFileThatCanBeMade) {
    const struct {
        std::string name;
        std::string cause;
    } cases[] = {
        {"no/a", "No such file or directory"},           {"file-link/a", "No such file or directory"},
        {"loop/a", "Too many levels of symbolic links"}, {"sub/", "Is a directory"},
        {std::string(256, 'n'), "File name too long"},
    };
    for (const auto& [name, cause] : cases) {
        EXPECT_EQ(checking(logOf({object(name)})),
                  cannotBeSaved(name.substr(0, 200) + (name.size() > 200 ? "..." : ""), cause));
        EXPECT_EQ(checking(logOf({object(name, samplelog::bytes)})), "")
            << "it is no object, so no file is made";
    }
}

TEST_F(ObjectNames, OfADamagedLogAreLookedAtUpToTheDamage) {
    const std::string log = logOf({object("/a")});
    EXPECT_EQ(checking(log + "xxxx"), leadsOut("1", "/a"));
    EXPECT_EQ(checking(log.substr(0, log.size() - 1)), "");
    EXPECT_EQ(checking(test::prefixOf(12) + std::string(12, '\xFF') + log), "");
    EXPECT_EQ(checking(""), "");
}

TEST_F(ObjectNames, NeedADirectoryThatCanBeWritten) {
    EXPECT_EQ(ObjectDirectory(objects + "/in").path(), objects + "/sub/deep");
    ASSERT_EQ(::chmod(files.path("").c_str(), 0755) + ::chmod(objects.c_str(), 0555), 0);
    const OrdinaryUser user;
    try {
        const ObjectDirectory directory(objects);
        FAIL() << "taken for writable";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.exitCode(), ExitCode::badOutput);
        EXPECT_EQ(failure.what(), objects + ": objects can't be saved there: Permission denied");
    }
}

}  // namespace
}  // namespace zeb::viewer
