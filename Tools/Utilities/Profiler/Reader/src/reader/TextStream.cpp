#include "reader/TextStream.h"

#include <algorithm>

namespace zeb::profiling {

namespace {

constexpr std::size_t firstBlockSize = 1U << 10U;
constexpr std::size_t lastBlockSize = 1U << 20U;

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

void TextStream::writeTo(std::ostream& destination) const {
    for (const std::string_view piece : buffer_.pieces()) {
        destination.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    }
}

std::string TextStream::str() const {
    std::string text;
    for (const std::string_view piece : buffer_.pieces()) {
        text += piece;
    }
    return text;
}

}  // namespace zeb::profiling
