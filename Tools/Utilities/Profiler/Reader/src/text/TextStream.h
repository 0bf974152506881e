#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "memory/MemoryBlock.h"

namespace zeb::profiling {

/// Keeps a text in blocks, so that it is never moved while it grows.
class TextBuffer final : public std::streambuf {
public:
    /// @return the whole text, in pieces that lie in the buffer
    [[nodiscard]] std::vector<std::string_view> pieces() const;

protected:
    int_type overflow(int_type character) override;

private:
    struct Block {
        MemoryBlock memory;
        std::size_t size;
    };

    std::vector<Block> blocks_;  ///< all but the last are full
};

/// A text that is composed in memory, in the classic locale whatever the host's is. Where a string stream
/// drops what it has no memory for, this one throws `std::bad_alloc`, so that no text comes out with a part
/// missing.
class TextStream final : public std::ostream {
public:
    TextStream();

    /// Puts the whole text on standard output, through the buffers of `std::cout`. Texts of several threads
    /// follow one another: the lock of `stdout` is held meanwhile, since every copy of the library in the
    /// process shares that one.
    void putOnStandardOutput() const;
    [[nodiscard]] std::string str() const;

private:
    TextBuffer buffer_;
};

}  // namespace zeb::profiling
