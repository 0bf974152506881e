// Files that are whole or as they were, and which paths lead to one file.

#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "command/FileIdentity.h"
#include "command/FormFile.h"
#include "command/Forms.h"
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

struct Size {
    std::size_t bytes;
};
Words writeBytes(std::ostream& out, const Size& size) {
    out << std::string(size.bytes, 'x');
    return {"as it is"};
}
Words writeNothing(std::ostream& /*out*/, const Size& /*size*/) {
    return {};
}
constexpr Form<Size> formTable[] = {
    {"--nothing", "Write nothing to FILE", writeNothing, 0, "are too much"},
    {"--bytes", "Write bytes to FILE", writeBytes, 1U << 20U, "are too much"}};

TEST(WantedForms, TellWhatIsTooLargeForItsReaders) {
    const test::TempDir files;
    const std::vector<Given> wanted = {{"--bytes", files.path("bytes")},
                                       {"--nothing", files.path("nothing")}};
    const std::string note = "program: " + files.path("bytes") + ": note: ";
    for (const auto& [size, words] : {std::pair{1U << 20U, ""}, {3U << 20U, "3 MB are too much\n"}}) {
        testing::internal::CaptureStderr();
        WantedForms<Size>(formTable, wanted, {}).write({size}, "program");
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  note + "as it is\n" + (*words == '\0' ? "" : note + words));
        EXPECT_EQ(std::filesystem::file_size(files.path("bytes")), size);
        EXPECT_EQ(std::filesystem::file_size(files.path("nothing")), 0U);
    }
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
