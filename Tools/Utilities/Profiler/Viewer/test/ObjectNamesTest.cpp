// Which object names a log may have when its objects are saved, and what becomes of the objects.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <ctime>
#include <filesystem>
#include <sstream>
#include <vector>

#include "samplelog/LogWriter.h"
#include "samplelog/SharedTextLog.h"
#include "support/Command.h"
#include "support/FailureOf.h"
#include "support/TestChunks.h"
#include "viewer/ObjectDirectory.h"
#include "viewer/ObjectNames.h"

namespace zeb::viewer {
namespace {

namespace test = command::test;

namespace fs = std::filesystem;

using samplelog::Event;

Event object(const std::string& fileName, std::uint32_t unit = samplelog::object) {
    return {"object", {}, unit, 0, fileName, {}, {}};
}

Event objectOf(std::size_t size, const std::string& fileName) {
    return {"object", samplelog::Bytes(size, 'o'), samplelog::object, 0, fileName, {}, {}};
}

// A log with a chunk for each event.
std::string logOf(const std::vector<Event>& events) {
    std::ostringstream bytes;
    samplelog::LogWriter writer(bytes);
    for (const Event& event : events) {
        writer.add({samplelog::MethodType::Execute, "net", {}, 0, {event}, 0});
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
        files.write("objects/file", "file");
    }

    // The failure without the log's path, which stands behind its exit code.
    std::string checking(const std::string& bytes, const command::Given& output = {}) const {
        const std::string log = files.write("run.log", bytes);
        std::string failure = test::failureOf([&] {
            checkObjectNames(log, objects).checkBefore({&output, 1});
        });
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
    for (const std::string name : {"a.bin", "", "..a", "a..", "...", ".", "sub/a.bin", "sub//deep/a", "sub/",
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
    for (const std::string name : {"./a", "d.x/f", "sub/d.x/f", "..a/"}) {
        std::string words = leadsOut(name);
        words.replace(words.find("would be saved"), 14, "could be saved, with a number at its last \".\",");
        EXPECT_EQ(checking(logOf({object(name)})), words);
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
    // One object, and not eight in one list, which would need a number too long for the name.
    EXPECT_EQ(checking(test::sharedEventsLog(std::string(253, 'n'))), "");
}

// Else a log of some megabytes would take half a minute.
TEST_F(ObjectNames, AreLookedAtOnceHoweverManyEventsShareOne) {
    const samplelog::SharedTextShape shape{.messages = 100'000,
                                           .text = "sub" + std::string(200'000, '/') + "a"};
    const std::string log = files.write("run.log", test::textOf(samplelog::encodeSharedTextLog(shape)));
    const std::clock_t start = std::clock();
    checkObjectNames(log, objects);
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

TEST_F(ObjectNames, MustStandForAFileThatCanBeMade) {
    const std::string tooLong(256, 'n');
    const std::string cannot = "\" can't be saved in " + objects + ":";
    const std::pair<std::string, std::string> cases[] = {
        {"no/a", "no/a" + cannot + " No such file or directory"},
        {"file-link/a", "file-link/a" + cannot + " No such file or directory"},
        {"loop/a", "loop/a" + cannot + " Too many levels of symbolic links"},
        {"file/", "file/" + cannot + " Not a directory"},
        {tooLong, tooLong.substr(0, 200) + "..." + cannot + " File name too long"},
    };
    for (const auto& [name, words] : cases) {
        EXPECT_EQ(checking(logOf({object(name)})), "3 chunk 1: the object \"" + words);
        EXPECT_EQ(checking(logOf({object(name, samplelog::bytes)})), "") << "no file is made of it";
    }
}

// The number of a taken name may not fit, where it is needed, whatever the directory's path is.
TEST_F(ObjectNames, LeaveRoomForTheirNumber) {
    for (const std::string directory : {"objects", "tmp.x/objects"}) {
        SCOPED_TRACE(directory);
        fs::create_directories(files.path(directory));
        objects = (fs::canonical(files.path("")) / directory).string();
        const std::string longest(255, 'n');
        const std::string shorter(253, 'n');
        const auto tooLong = [&](const std::string& number) {
            return "3 chunk 1: the object \"" + longest.substr(0, 200) + "...\" can't be saved in " +
                   objects + " with the number " + number + ": File name too long";
        };
        EXPECT_EQ(checking(logOf({object(longest), object(longest)})), tooLong("4"));
        EXPECT_EQ(checking(logOf({object(shorter), object(shorter), object(shorter)})), "");
        EXPECT_EQ(checking(logOf(std::vector(4, object(shorter)))), tooLong("12"));
        files.write(directory + "/" + longest, "");
        EXPECT_EQ(checking(logOf({object(longest)})), tooLong("1"));
    }
}

TEST_F(ObjectNames, MayNotStandForAFileThatIsWrittenBeside) {
    files.write("objects/old.csv", "");
    fs::create_symlink("objects/sub/deep/a_12.csv", files.path("link.csv"));
    const struct {
        std::string csv;
        std::string name;
        bool isRefused;
    } cases[] = {
        {"objects/a.csv", "a.csv", true},      {"objects/sub/../a_1.csv", "a.csv", true},
        {"objects/in/a", "sub//deep/a", true}, {"link.csv", "in/a.csv", true},
        {"objects/a_1.csv", "a_1.csv", true},  {"objects/a_01.csv", "a.csv", false},
        {"objects/a.csv", "a_1.csv", false},   {"objects/sub/a", "a", false},
        {"objects/old.csv", "old.csv", false}, {"no/a", "a", false},
        {"objects/a_.csv", "a.csv", false},    {"a.csv", "a.csv", false},
    };
    for (const auto& [csv, name, isRefused] : cases) {
        const std::string path = files.path(csv);
        for (const std::string option : {"--csv", "--json"}) {
            EXPECT_EQ(checking(logOf({object(name)}), {option, path}),
                      isRefused ? "1 chunk 1: the object \"" + name + "\" could be saved as " + path +
                                      ", the file of " + option + ", which needs another name"
                                : "")
                << csv;
        }
    }
}

TEST_F(ObjectNames, OfADamagedLogAreLookedAtUpToTheDamage) {
    const std::string log = logOf({object("/a")});
    EXPECT_EQ(checking(log + "xxxx"), leadsOut("/a"));
    EXPECT_EQ(checking(log.substr(0, log.size() - 1)), "");
    EXPECT_EQ(checking(test::prefixOf(12) + std::string(12, '\xFF') + log), "");
    EXPECT_EQ(checking(""), "");
}

class SavedObjectsTest : public testing::Test {
protected:
    // Runs the viewer in a shell, behind a command.
    test::CommandResult view(const std::string& command, const std::string& bytes,
                             const test::Strings& reader) const {
        test::Strings arguments = {"/bin/sh",
                                   "-c",
                                   command + "exec \"$@\"",
                                   "sh",
                                   ZEB_VIEWER,
                                   files.write("run.log", bytes),
                                   "--save-objects=" + directory};
        arguments.insert(arguments.end(), reader.begin(), reader.end());
        return test::runCommand(arguments);
    }
    void expectLost(const test::CommandResult& result, const std::string& line) const {
        test::expectFailure(result, 3, "objects go to " + directory + "\nzeb-profile-viewer: " + line);
    }

    test::TempDir files;
    std::string directory = fs::canonical(files.path("")).string();
};

// The fake reader saves five bytes.
TEST_F(SavedObjectsTest, AreLookedAtAfterTheReport) {
    const test::Strings reader = {"--reader", ZEB_FAKE_READER, "--report=object", "--csv",
                                  files.path("runs.csv")};
    const std::string lost =
        directory + "/object.bin: the object is not saved whole: the file has 5 bytes, the log gives ";
    for (const auto& [log, words] :
         {std::pair{logOf({objectOf(7, "object.bin")}), lost + "7"},
          {logOf({objectOf(7, "object.bin"), objectOf(0, "object.bin"), objectOf(3, "object_1.bin")}),
           lost + "7"}}) {
        expectLost(view("", log, reader), words);
        EXPECT_FALSE(fs::exists(files.path("runs.csv")));
        fs::remove(files.path("object.bin"));
    }
    EXPECT_EQ(view("", logOf({objectOf(7, "object.bin"), objectOf(5, "object.bin")}), reader).exitCode, 0);
    // What is there before is not the reader's.
    EXPECT_EQ(view("", logOf({objectOf(7, "object.bin")}), reader).exitCode, 0);
}

TEST_F(SavedObjectsTest, MayShareTheirNumberedNames) {
    files.write("a_3.bin", "there before");
    const std::string log = logOf({objectOf(7, "a.bin"), objectOf(9, "a_1.bin"), objectOf(8, "a.bin")});
    for (const char* const reader : {"--reader=generic", "--reader=murl"}) {
        const auto result = view("", log, {reader});
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }
}

TEST_F(SavedObjectsTest, MustBeWithinTheFileSizeLimit) {
    const auto saveWithin = [&](std::size_t size, const char* name) {
        return view("ulimit -f 20; ", logOf({objectOf(size, name)}), {"--reader=generic"});
    };
    EXPECT_EQ(saveWithin(10240, "a.bin").exitCode, 0);
    EXPECT_EQ(saveWithin(10241, "").exitCode, 0) << "no file is made of it";
    test::expectFailure(saveWithin(10241, "a.bin"), 3,
                        files.path("run.log") + ": chunk 1: the object \"a.bin\" can't be saved in " +
                            directory + ": File too large");
}

TEST_F(SavedObjectsTest, AreToldWhenTheDiskIsFull) {
    directory += "/disk";
    const struct {
        std::string options;
        std::size_t size;
        std::string line;
    } cases[] = {
        {"size=64K", 40000,
         "/b.bin: the object is not saved whole: the file has 24576 bytes, the log gives 40000"},
        {"nr_inodes=3", 1,
         ": no other object can be saved there, so one may be missing: No space left on device"},
    };
    for (const auto& [options, size, line] : cases) {
        fs::create_directory(directory);
        if (::mount("tmpfs", directory.c_str(), "tmpfs", 0, options.c_str()) != 0) {
            GTEST_SKIP() << "no disk of its own";
        }
        const std::string log = logOf({objectOf(size, "a.bin"), objectOf(size, "b.bin")});
        const auto result = view("", log, {"--reader=generic"});
        const auto again = view("", log, {"--reader=generic"});
        EXPECT_EQ(::umount(directory.c_str()), 0);
        EXPECT_EQ(result.exitCode, 3);
        EXPECT_NE(result.err.find(directory), std::string::npos);
        EXPECT_NE(result.err.find(line.substr(line.find(": "))), std::string::npos) << result.err;
        test::expectFailure(again, 3, directory + ": objects can't be saved there: No space left on device");
    }
}

}  // namespace
}  // namespace zeb::viewer
