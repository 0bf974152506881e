// Files that are whole or as they were, and which paths lead to one file.

#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <sstream>
#include <string>

#include "command/FileIdentity.h"
#include "command/FormFile.h"
#include "command/MemoryLimit.h"
#include "support/TestChunks.h"

namespace zeb::command {
namespace {

// What a stream swallows while it has no memory would be missing in the file.
TEST(FormFile, IsAsItWasWhenAnAllocationHasFailed) {
    if (!MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under sanitizers";
    }
    const test::TempDir files;
    const std::string path = files.write("form", "old");
    const auto writeWithoutMemory = [&path] {
        const MemoryLimit limit(MemorySize{64U << 20U, "64M"});
        try {
            FormFile(path, {}).write([](std::ostream& out) {
                std::ostringstream text;
                while (text << std::string(1000, 'x')) {
                }
                out << "a part";
            });
        } catch (const std::bad_alloc&) {
            std::exit(0);
        }
        std::exit(1);
    };
    EXPECT_EXIT(writeWithoutMemory(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(test::fileText(path), "old");
}

TEST(FileIdentity, IsThatOfTheFileWhereverItIs) {
    const test::TempDir files;
    const auto identity = [&files](const std::string& name) { return identityOf(files.path(name)); };
    std::filesystem::create_directory(files.path("directory"));
    std::filesystem::create_symlink("gone", files.path("link"));
    files.write("file", "");
    EXPECT_EQ(identity("directory/../new"), identity("new"));
    EXPECT_EQ(identity("link"), identity("gone"));
    EXPECT_NE(identity("directory/new"), identity("new"));
    EXPECT_NE(identity("file"), identity("new"));
    EXPECT_NE(identity("other"), identity("new"));
    for (const char* const nowhere : {"none/file", "directory/none/"}) {
        EXPECT_EQ(identity(nowhere), std::nullopt) << nowhere;
    }
    EXPECT_EQ(identityOf(""), std::nullopt);
}

}  // namespace
}  // namespace zeb::command
