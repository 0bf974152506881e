#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "log/MemoryBlock.h"

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

/// A text that is composed in memory. Where a string stream drops what it has no memory for, this one throws
/// `std::bad_alloc`, so that no text comes out with a part missing.
class TextStream final : public std::ostream {
public:
    TextStream() : std::ostream(&buffer_) { exceptions(std::ios::badbit); }

    /// Writes the whole text.
    void writeTo(std::ostream& destination) const;
    [[nodiscard]] std::string str() const;

private:
    TextBuffer buffer_;
};

}  // namespace zeb::profiling
