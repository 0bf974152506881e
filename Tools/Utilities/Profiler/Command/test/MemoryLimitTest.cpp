#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "command/MemoryLimit.h"
#include "support/TestFiles.h"

namespace zeb::command {
namespace {

TEST(MemoryLimit, TakesSizesAsUsersWriteThem) {
    const std::pair<std::string, std::uint64_t> cases[] = {
        {"1", 1},
        {"1000", 1000},
        {"2K", 2048},
        {"3m", 3 << 20U},
        {"4G", std::uint64_t{4} << 30U},
        {"9223372036854775807", 9223372036854775807U},
        {"8589934591G", std::uint64_t{8589934591} << 30U},
    };
    for (const auto& [text, bytes] : cases) {
        const auto size = parseMemorySize(text);
        ASSERT_TRUE(size) << text;
        EXPECT_EQ(size->bytes, bytes) << text;
        EXPECT_EQ(size->text, text);
    }
    for (const char* const text : {"9223372036854775808", "8589934592G", "18446744073709551616", "0", "0G",
                                   "", "G", "-1", "+1", " 1", "1 G", "1GB", "1.5G", "0x10", "1T", "1*"}) {
        EXPECT_FALSE(parseMemorySize(text)) << text;
    }
}

TEST(MemoryLimit, WritesSizesInTheLargestUnitThatDividesThem) {
    const std::pair<std::uint64_t, std::string> cases[] = {
        {1023, "1023"}, {1024, "1K"}, {1536, "1536"}, {3 << 20U, "3M"}, {1 << 30U, "1G"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(memorySizeOf(bytes).text, text);
    }
}

// Both versions side by side, a limit above the group, and a container whose own path is not to be seen.
TEST(MemoryLimit, IsThatOfTheControlGroup) {
    constexpr std::uint64_t none = std::numeric_limits<std::uint64_t>::max();
    using Files = std::vector<std::pair<std::string, std::string>>;  // paths and what they hold
    const struct {
        std::string groups;
        Files files;
        std::uint64_t limit;
    } cases[] = {
        {"0::/a/b\n", {{"sys/fs/cgroup/a/b/memory.max", "1048576\n"}}, 1048576},
        {"0::/a/b\n", {{"sys/fs/cgroup/a/memory.max", "4096\n"}}, 4096},
        {"0::/a/b\n", {{"sys/fs/cgroup/memory.max", "8192\n"}}, 8192},
        {"0::/a/b\n",
         {{"sys/fs/cgroup/a/b/memory.max", "max\n"},
          {"sys/fs/cgroup/a/memory.max", "4096\n"},
          {"sys/fs/cgroup/memory.max", "8192\n"}},
         4096},
        {"0::/a/b\n",
         {{"sys/fs/cgroup/a/b/memory.max", "8192\n"}, {"sys/fs/cgroup/a/memory.max", "4096\n"}},
         4096},
        {"0::/a/b\n", {{"sys/fs/cgroup/a/b/memory.max", "max\n"}}, none},
        {"0::/a/b\n", {{"sys/fs/cgroup/a/c/memory.max", "4096\n"}}, none},
        {"1:cpu,memory:/a\n0::/\n", {{"sys/fs/cgroup/memory/a/memory.limit_in_bytes", "512\n"}}, 512},
        {"1:cpu:/a\n0::/\n", {{"sys/fs/cgroup/memory/a/memory.limit_in_bytes", "512\n"}}, none},
        {"1\n1:memory\n", {{"sys/fs/cgroup/memory.max", "512\n"}}, none},
    };
    for (const auto& [groups, files, limit] : cases) {
        const zeb::test::TempDir root;
        Files all = files;
        all.emplace_back("proc/self/cgroup", groups);
        for (const auto& [name, text] : all) {
            std::filesystem::create_directories(std::filesystem::path(root.path(name)).parent_path());
            root.write(name, text);
        }
        EXPECT_EQ(controlGroupLimit(root.directory()), limit) << groups << files.front().first;
    }
    EXPECT_EQ(controlGroupLimit("/no/such/root"), none);
}

}  // namespace
}  // namespace zeb::command
