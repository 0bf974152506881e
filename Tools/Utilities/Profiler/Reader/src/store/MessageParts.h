#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "log/LogAccess.h"
#include "log/OpenChunk.h"
#include "log/ProfileLog_generated.h"
#include "store/EventArena.h"
#include "store/NamedList.h"

namespace zeb::profiling {

/// Reads the texts and payloads of messages and keeps them in an arena. A log may refer to a long one from
/// any number of places, or let long ones overlap. So each address of a long one is looked at once, and what
/// is kept of a chunk takes no more than twice its size. All operations throw `std::bad_alloc`.
///
/// Strings and vectors come as pointers, never null: they may stand at odd addresses, where a reference
/// must not lead.
class MessageParts {
public:
    /// @param arena has to outlive the parts
    explicit MessageParts(EventArena& arena) : arena_(arena) {}
    MessageParts(const MessageParts&) = delete;
    MessageParts& operator=(const MessageParts&) = delete;

    /// To be called before each message: addresses of another chunk are forgotten.
    void enter(const OpenChunk& chunk);

    [[nodiscard]] EventArena& arena() const { return arena_; }

    /// @return a text up to its first NUL; it lies in the chunk
    std::string_view visible(const flatbuffers::String* text) {
        return isLong(lengthOf(text)) ? longText(text).visible : visibleText(text);
    }
    /// Keeps a text up to its first NUL.
    StoredText text(const flatbuffers::String* text) {
        return isLong(lengthOf(text)) ? keep(longText(text)) : arena_.keepText(visibleText(text));
    }
    /// Keeps a text up to its first NUL as a name, which comes again and again, once.
    StoredText name(const flatbuffers::String* text) {
        return isLong(lengthOf(text)) ? longName(text) : arena_.keepName(visibleText(text));
    }
    /// Keeps a text up to its first NUL, with a NUL behind it.
    std::string_view terminated(const flatbuffers::String* text) {
        return isLong(lengthOf(text)) ? keep(longText(text)).text()
                                      : arena_.keepTerminated(visibleText(text));
    }
    /// Keeps a part of a text of the chunk.
    StoredText part(std::string_view text);
    /// Keeps a payload.
    std::span<const std::byte> bytes(const flatbuffers::Vector<std::uint8_t>* payload);

    /// Finds the entry of a list that a text of the chunk names.
    /// @param nameIn gives the name in the text; the same in all calls for that list
    /// @param make makes the entry if there is none
    template <typename List, typename NameIn, typename Make>
    auto& entryOf(List& list, std::string_view text, NameIn nameIn, Make make) {
        const auto find = [&] { return list.findOrAdd(nameIn(text), make); };
        if (!isLong(text.size())) {
            return list[find()];
        }
        const std::pair<const void*, const char*> key(&list, text.data());
        auto position = positions_.find(key);
        if (position == positions_.end()) {
            position = positions_.emplace(key, find()).first;
        }
        return list[position->second];
    }

private:
    // What has been made of the text at an address so far.
    struct LongText {
        std::string_view visible;
        StoredText kept;
        StoredText name;
    };

    // A short one costs less to look at again than to look up.
    static bool isLong(std::size_t size) {
        constexpr std::size_t longestShort = 256;
        return size > longestShort;
    }

    LongText& longText(const flatbuffers::String* text);
    StoredText longName(const flatbuffers::String* text);
    StoredText keep(LongText& text);
    const std::byte* keep(const void* part, std::size_t size);

    EventArena& arena_;
    OpenChunk chunk_;
    std::size_t keptOfChunk_ = 0;            ///< bytes of long parts
    const std::byte* wholeChunk_ = nullptr;  ///< its copy, made when the parts would take more
    std::unordered_map<const void*, LongText> longTexts_;
    std::unordered_map<const void*, const std::byte*> payloads_;
    std::map<std::pair<const void*, const char*>, std::uint32_t> positions_;  ///< by list and text
};

}  // namespace zeb::profiling
