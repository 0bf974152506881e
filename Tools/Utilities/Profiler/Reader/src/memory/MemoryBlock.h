#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace zeb::profiling {

/// Memory of undefined content, to be filled from its front.
using MemoryBlock = std::unique_ptr<std::byte[]>;

/// @throws std::bad_alloc
MemoryBlock makeMemoryBlock(std::size_t size);

/// Asks for all pages of fresh memory at once, large ones where they fit, which costs less than to fetch each
/// when it is first written to. It is for memory that is sure to be written all over. Where the system does
/// not know such hints, or has other pages, nothing is lost.
void fetchPages(std::span<std::byte> memory);

}  // namespace zeb::profiling
