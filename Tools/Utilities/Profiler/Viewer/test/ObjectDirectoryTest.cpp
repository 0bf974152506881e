#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/FailureOf.h"
#include "support/TestChunks.h"
#include "viewer/ObjectDirectory.h"

namespace zeb::viewer {
namespace {

namespace test = command::test;

namespace fs = std::filesystem;

class ObjectDirectoryTest : public testing::Test {
protected:
    ObjectDirectoryTest() { fs::create_directory(objects); }

    test::TempDir files;
    std::string root = fs::canonical(files.directory()).string();
    std::string objects = root + "/objects";
};

TEST_F(ObjectDirectoryTest, HasToLetFilesBeMadeInIt) {
    fs::create_directory_symlink("objects", files.path("link"));
    EXPECT_EQ(ObjectDirectory(files.path("link")).path(), objects);
    ASSERT_EQ(::chmod(root.c_str(), 0755), 0);
    const std::pair<::mode_t, bool> modes[] = {
        {0777, true}, {0333, true}, {0555, false}, {0666, false}, {0000, false}};
    for (const auto& [mode, isGood] : modes) {
        ASSERT_EQ(::chmod(objects.c_str(), mode), 0);
        const test::OrdinaryUser user;
        EXPECT_EQ(test::failureOf([this] { const ObjectDirectory directory(objects); }),
                  isGood ? "" : "3 " + objects + ": objects can't be saved there: Permission denied")
            << mode;
    }
    ASSERT_EQ(::chmod(objects.c_str(), 0755), 0);
}

TEST_F(ObjectDirectoryTest, IsEnteredWhereverItIsByThenAndLeftForThePlaceBefore) {
    const fs::path before = fs::current_path();
    const ObjectDirectory directory(objects);
    fs::rename(objects, root + "/moved");
    fs::create_directory(objects);
    {
        DirectoryVisit visit(directory);
        EXPECT_EQ(fs::current_path(), root + "/moved");
    }
    EXPECT_EQ(fs::current_path(), before);
    {
        DirectoryVisit visit(directory);
        visit.leave();
        EXPECT_EQ(fs::current_path(), before);
        fs::current_path(root);
    }
    EXPECT_EQ(fs::current_path(), root) << "it has been left already";
    fs::current_path(before);
}

}  // namespace
}  // namespace zeb::viewer
