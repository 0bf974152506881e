#include "store/MessageParts.h"

namespace zeb::profiling {

void MessageParts::enter(const OpenChunk& chunk) {
    if (chunk.number == chunk_.number) {
        return;
    }
    chunk_ = chunk;
    keptOfChunk_ = 0;
    wholeChunk_ = nullptr;
    longTexts_.clear();
    payloads_.clear();
    positions_.clear();
}

StoredText MessageParts::longName(const flatbuffers::String* text) {
    LongText& found = longText(text);
    if (found.name.kept() == nullptr) {
        found.name = arena_.keepName(found.visible, [this, &found] { return keep(found); });
    }
    return found.name;
}

StoredText MessageParts::part(std::string_view text) {
    if (!isLong(text.size())) {
        return arena_.keepText(text);
    }
    const auto* const kept = reinterpret_cast<const char*>(keep(text.data(), text.size()));
    return arena_.textOf({kept, text.size()});
}

std::span<const std::byte> MessageParts::bytes(const flatbuffers::Vector<std::uint8_t>* payload) {
    const std::span<const std::byte> bytes = bytesOf(payload);
    if (!isLong(bytes.size())) {
        return arena_.keepBytes(bytes);
    }
    auto found = payloads_.find(payload);
    if (found == payloads_.end()) {
        found = payloads_.emplace(payload, keep(bytes.data(), bytes.size())).first;
    }
    return {found->second, bytes.size()};
}

MessageParts::LongText& MessageParts::longText(const flatbuffers::String* text) {
    auto found = longTexts_.find(text);
    if (found == longTexts_.end()) {
        found = longTexts_.emplace(text, LongText{visibleText(text), {}, {}}).first;
    }
    return found->second;
}

// With the NUL that ends it in the chunk.
StoredText MessageParts::keep(LongText& text) {
    if (text.kept.kept() == nullptr) {
        const std::byte* const kept = keep(text.visible.data(), text.visible.size() + 1);
        text.kept = arena_.textOf({reinterpret_cast<const char*>(kept), text.visible.size()});
    }
    return text.kept;
}

const std::byte* MessageParts::keep(const void* part, std::size_t size) {
    const std::span<const std::byte> chunk = std::as_bytes(chunk_.bytes);
    const std::span<const std::byte> bytes(static_cast<const std::byte*>(part), size);
    if (wholeChunk_ == nullptr && size > chunk.size() - keptOfChunk_) {
        wholeChunk_ = arena_.keepBytes(chunk).data();
    }
    if (wholeChunk_ != nullptr) {
        return wholeChunk_ + (bytes.data() - chunk.data());
    }
    const std::byte* const kept = arena_.keepBytes(bytes).data();
    keptOfChunk_ += size;
    return kept;
}

}  // namespace zeb::profiling
