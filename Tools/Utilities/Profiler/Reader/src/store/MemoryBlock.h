#pragma once

#include <cstddef>
#include <memory>

namespace zeb::profiling {

/// Memory of undefined content, to be filled from its front.
using MemoryBlock = std::unique_ptr<std::byte[]>;

/// @throws std::bad_alloc
MemoryBlock makeMemoryBlock(std::size_t size);

}  // namespace zeb::profiling
