#include "command/MemoryLimit.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <limits>
#include <new>
#include <utility>

#include "command/AllocationFailure.h"
#include "command/Failure.h"

namespace zeb::command {

namespace {

struct Unit {
    char letter;
    unsigned shift;
};
constexpr Unit units[] = {{'G', 30}, {'M', 20}, {'K', 10}};

constexpr std::uint64_t noLimit = std::numeric_limits<std::uint64_t>::max();
constexpr auto maxBytes = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

// Small enough to come from the heap proper, where all small allocations find room once it is free.
constexpr std::size_t reserveSize = 65536;

thread_local bool hasAllocationFailed = false;

void noteFailedAllocation() {
    hasAllocationFailed = true;
    throw std::bad_alloc();
}

std::optional<unsigned> shiftOf(std::string_view suffix) {
    if (suffix.empty()) {
        return 0;
    }
    for (const Unit& unit : units) {
        if (suffix.size() == 1 && (suffix.front() | 0x20) == (unit.letter | 0x20)) {
            return unit.shift;
        }
    }
    return std::nullopt;
}

std::uint64_t currentLimit() {
    std::uint64_t lowest = noLimit;
    for (const auto resource : {RLIMIT_DATA, RLIMIT_AS}) {
        rlimit limit{};
        if (::getrlimit(resource, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
            lowest = std::min<std::uint64_t>(lowest, limit.rlim_cur);
        }
    }
    return lowest;
}

struct GroupVersion {
    std::string_view controller;  ///< in its line of /proc/self/cgroup, between commas
    std::string_view directory;   ///< where the groups are mounted
    std::string_view file;        ///< of a group, with its limit
};
constexpr GroupVersion groupVersions[] = {
    {",,", "sys/fs/cgroup", "memory.max"},  // the one line that names no controller
    {",memory,", "sys/fs/cgroup/memory", "memory.limit_in_bytes"},
};

// A group has no more than the groups above it. Within a container they may be hidden, or the container's own
// group is mounted as the topmost.
std::uint64_t lowestOnTheWay(const std::filesystem::path& mount, std::filesystem::path group,
                             std::string_view file) {
    std::uint64_t lowest = noLimit;
    for (group = group.relative_path();; group = group.parent_path()) {
        std::uint64_t limit = 0;
        if (std::ifstream(mount / group / file) >> limit) {  // a group without a limit has a word there
            lowest = std::min(lowest, limit);
        }
        if (group.empty()) {
            return lowest;
        }
    }
}

// The data limit counts what takes memory: the heap and private mappings that are written to. The address
// space would count libraries and reservations as well, and the stack, which ends the process without a word
// when it can't grow.
void limitData(std::uint64_t bytes) {
    rlimit limit{};
    const bool isKnown = ::getrlimit(RLIMIT_DATA, &limit) == 0;
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_cur, bytes);
    if (!isKnown || ::setrlimit(RLIMIT_DATA, &limit) != 0) {
        throw Failure(ExitCode::usage, "--max-memory", "the limit can't be set: " + errorText(errno));
    }
}

}  // namespace

// Compilers tell of a sanitizer in the one way or the other.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const bool MemoryLimit::canBeSet = false;
#elif defined(__has_feature)
const bool MemoryLimit::canBeSet =
    !(__has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer));
#else
const bool MemoryLimit::canBeSet = true;
#endif

std::optional<MemorySize> parseMemorySize(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || number == 0) {
        return std::nullopt;
    }
    const auto shift = shiftOf({rest, end});
    if (!shift || number > maxBytes >> *shift) {
        return std::nullopt;
    }
    return MemorySize{number << *shift, std::string(text)};
}

MemorySize memorySizeOf(std::uint64_t bytes) {
    for (const auto& [letter, shift] : units) {
        if (bytes >> shift << shift == bytes) {
            return {bytes, std::to_string(bytes >> shift) + letter};
        }
    }
    return {bytes, std::to_string(bytes)};
}

std::uint64_t controlGroupLimit(const std::string& root) {
    const std::filesystem::path top(root);
    std::ifstream groups(top / "proc/self/cgroup");
    std::uint64_t lowest = noLimit;
    for (std::string line; std::getline(groups, line);) {  // number:controllers:path
        const std::size_t first = line.find(':');
        const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos) {
            continue;
        }
        const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
        for (const auto& [controller, directory, file] : groupVersions) {
            if (controllers.find(controller) != std::string::npos) {
                lowest = std::min(lowest, lowestOnTheWay(top / directory, line.substr(second + 1), file));
            }
        }
    }
    return lowest;
}

MemorySize defaultMemorySize() {
    const auto pages = static_cast<std::uint64_t>(std::max(::sysconf(_SC_PHYS_PAGES), 4L));
    const auto pageSize = static_cast<std::uint64_t>(std::max(::sysconf(_SC_PAGESIZE), 4096L));
    const std::uint64_t bytes = std::min(pages * pageSize, controlGroupLimit("/")) / 4 * 3;
    return memorySizeOf(std::max<std::uint64_t>(bytes >> 20U, 1) << 20U);
}

MemoryLimit::MemoryLimit(const MemorySize& size)
    : cause_(withoutLimit), reserve_(std::make_unique<std::byte[]>(reserveSize)) {
    if (canBeSet) {
        const std::uint64_t before = currentLimit();
        limitData(size.bytes);
        std::set_new_handler(noteFailedAllocation);
        cause_ = "needs more than " + (before < size.bytes ? memorySizeOf(before) : size).text + " of memory";
    }
}

bool MemoryLimit::wasHit() {
    return hasAllocationFailed;
}

bool takeAllocationFailure() {
    return std::exchange(hasAllocationFailed, false);
}

}  // namespace zeb::command
