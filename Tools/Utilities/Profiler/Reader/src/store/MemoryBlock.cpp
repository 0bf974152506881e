#include "store/MemoryBlock.h"

#include <sys/mman.h>

#include <cstdint>

namespace zeb::profiling {

namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t worthwhileSize = 1U << 16U;

// Asks for all pages of fresh memory at once, which costs less than to fetch each when it is first written
// to. It is a hint: where the system does not know it, nothing is lost.
void fetchPages([[maybe_unused]] std::byte* start, [[maybe_unused]] std::size_t size) {
#ifdef MADV_POPULATE_WRITE
    const std::size_t offset = (pageSize - reinterpret_cast<std::uintptr_t>(start) % pageSize) % pageSize;
    static_cast<void>(madvise(start + offset, (size - offset) / pageSize * pageSize, MADV_POPULATE_WRITE));
#endif
}

}  // namespace

MemoryBlock makeMemoryBlock(std::size_t size) {
    auto block = std::make_unique_for_overwrite<std::byte[]>(size);
    if (size >= worthwhileSize) {
        fetchPages(block.get(), size);
    }
    return block;
}

}  // namespace zeb::profiling
