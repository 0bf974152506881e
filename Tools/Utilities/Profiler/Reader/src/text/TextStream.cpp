#include "text/TextStream.h"

#include <stdio.h>  // NOLINT(modernize-deprecated-headers): flockfile

#include <algorithm>
#include <iostream>
#include <locale>

namespace zeb::profiling {

namespace {

constexpr std::size_t firstBlockSize = 1U << 10U;
constexpr std::size_t lastBlockSize = 1U << 20U;

// Unlocks also when `std::cout` throws, as a host may want it to.
class StandardOutputLock {
public:
    StandardOutputLock() { ::flockfile(stdout); }
    ~StandardOutputLock() { ::funlockfile(stdout); }
    StandardOutputLock(const StandardOutputLock&) = delete;
    StandardOutputLock& operator=(const StandardOutputLock&) = delete;
};

}  // namespace

std::vector<std::string_view> TextBuffer::pieces() const {
    std::vector<std::string_view> pieces;
    pieces.reserve(blocks_.size());
    for (const Block& block : blocks_) {
        const bool isLast = &block == &blocks_.back();
        pieces.emplace_back(reinterpret_cast<const char*>(block.memory.get()),
                            isLast ? static_cast<std::size_t>(pptr() - pbase()) : block.size);
    }
    return pieces;
}

TextBuffer::int_type TextBuffer::overflow(int_type character) {
    const std::size_t size =
        blocks_.empty() ? firstBlockSize : std::min(blocks_.back().size * 2, lastBlockSize);
    blocks_.push_back({makeMemoryBlock(size), size});
    auto* const start = reinterpret_cast<char*>(blocks_.back().memory.get());
    setp(start, start + size);
    return traits_type::eq_int_type(character, traits_type::eof())
               ? traits_type::not_eof(character)
               : sputc(traits_type::to_char_type(character));
}

TextStream::TextStream() : std::ostream(&buffer_) {
    imbue(std::locale::classic());
    exceptions(std::ios::badbit);
}

void TextStream::putOnStandardOutput() const {
    const std::vector<std::string_view> pieces = buffer_.pieces();
    const StandardOutputLock lock;
    for (const std::string_view piece : pieces) {
        std::cout.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    }
    std::cout.flush();
}

std::string TextStream::str() const {
    std::string text;
    for (const std::string_view piece : buffer_.pieces()) {
        text += piece;
    }
    return text;
}

}  // namespace zeb::profiling
