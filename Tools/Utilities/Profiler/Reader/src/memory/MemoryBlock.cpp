#include "memory/MemoryBlock.h"

#include <sys/mman.h>

#include <cstdint>

namespace zeb::profiling {

namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t worthwhileSize = 1U << 16U;
constexpr std::size_t largePagesSize = 1U << 23U;

// A hint, which the system may not know.
void advise(std::span<std::byte> pages, int hint) {
    static_cast<void>(madvise(pages.data(), pages.size(), hint));
}

}  // namespace

MemoryBlock makeMemoryBlock(std::size_t size) {
    auto block = std::make_unique_for_overwrite<std::byte[]>(size);
    fetchPages({block.get(), size});
    return block;
}

void fetchPages(std::span<std::byte> memory) {
    if (memory.size() < worthwhileSize) {
        return;
    }
    const std::size_t offset = -reinterpret_cast<std::uintptr_t>(memory.data()) % pageSize;
    const auto pages = memory.subspan(offset, (memory.size() - offset) / pageSize * pageSize);
#ifdef MADV_HUGEPAGE
    if (memory.size() >= largePagesSize) {
        advise(pages, MADV_HUGEPAGE);
    }
#endif
#ifdef MADV_POPULATE_WRITE
    advise(pages, MADV_POPULATE_WRITE);
#endif
}

}  // namespace zeb::profiling
