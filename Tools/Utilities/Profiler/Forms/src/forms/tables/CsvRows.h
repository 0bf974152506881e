#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace zeb::forms {

/// Composes rows of CSV by RFC 4180. Texts always stand in quotes, so that an empty text is `""`, and what is
/// not told is nothing at all. No locale plays a part, and memory is one buffer, whatever the rows hold.
class CsvRows {
public:
    using Take = std::function<void(std::string_view bytes)>;

    /// @param take gets the bytes when the buffer is full, and by `flush`; what it throws passes
    explicit CsvRows(Take take) : take_(std::move(take)), buffer_(std::make_unique_for_overwrite<Buffer>()) {}

    /// Puts a column's name, which goes as it stands.
    void putName(std::string_view name);
    /// Puts a text of any bytes: what is no well-formed UTF-8, and NUL, becomes U+FFFD.
    void putText(std::string_view text);
    void putNumber(std::uint64_t value);
    /// Puts a number in its shortest exact form, and nothing for one that is not finite.
    void putNumber(double value);
    void putTruth(bool value);
    void putNothing();
    void endRow();

    /// Writes what is in the buffer.
    void flush();
    /// Drops what is in the buffer.
    void clear();

private:
    using Buffer = std::array<char, std::size_t{1} << 17U>;

    // Begins a value, with room for a short one.
    void beginValue();
    void makeRoom(std::size_t bytes);
    void append(std::string_view bytes);
    template <typename Number>
    void appendNumber(Number value);

    Take take_;
    std::unique_ptr<Buffer> buffer_;
    std::size_t size_ = 0;
    bool isInRow_ = false;
};

}  // namespace zeb::forms
