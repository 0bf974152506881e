#include "forms/tables/CsvRows.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "text/Utf8.h"

namespace zeb::forms {

namespace {

constexpr std::size_t longestShortValue = 64;  // a number or a truth value, with what stands around it

bool goesAsItStands(char character) {
    return character != '"' && character != '\0' && static_cast<unsigned char>(character) < 0x80U;
}

}  // namespace

void CsvRows::putName(std::string_view name) {
    beginValue();
    append(name);
}

void CsvRows::putText(std::string_view text) {
    beginValue();
    append("\"");
    while (!text.empty()) {
        const auto end = std::find_if_not(text.begin(), text.end(), goesAsItStands);
        append(text.substr(0, static_cast<std::size_t>(end - text.begin())));
        text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
        if (!text.empty()) {
            const auto [state, length] = profiling::frontCharacter(text);
            const bool isText = state == profiling::FrontCharacter::State::whole && text.front() != '\0';
            append(text.front() == '"' ? "\"\""
                   : isText            ? text.substr(0, length)
                                       : profiling::replacementCharacter);
            text.remove_prefix(length);
        }
    }
    append("\"");
}

void CsvRows::putNumber(std::uint64_t value) {
    beginValue();
    appendNumber(value);
}

void CsvRows::putNumber(double value) {
    beginValue();
    if (std::isfinite(value)) {
        appendNumber(value);
    }
}

void CsvRows::putTruth(bool value) {
    beginValue();
    append(value ? "true" : "false");
}

void CsvRows::putNothing() {
    beginValue();
}

void CsvRows::endRow() {
    append("\r\n");
    isInRow_ = false;
}

void CsvRows::flush() {
    if (size_ != 0) {
        take_({buffer_->data(), size_});
        size_ = 0;
    }
}

void CsvRows::clear() {
    size_ = 0;
    isInRow_ = false;
}

void CsvRows::beginValue() {
    makeRoom(longestShortValue);
    if (std::exchange(isInRow_, true)) {
        append(",");
    }
}

void CsvRows::makeRoom(std::size_t bytes) {
    if (buffer_->size() - size_ < bytes) {
        flush();
    }
}

void CsvRows::append(std::string_view bytes) {
    while (!bytes.empty()) {
        makeRoom(1);
        const std::size_t count = std::min(bytes.size(), buffer_->size() - size_);
        std::copy_n(bytes.data(), count, buffer_->data() + size_);
        size_ += count;
        bytes.remove_prefix(count);
    }
}

template <typename Number>
void CsvRows::appendNumber(Number value) {
    char* const end = buffer_->data() + buffer_->size();
    size_ =
        static_cast<std::size_t>(std::to_chars(buffer_->data() + size_, end, value).ptr - buffer_->data());
}

}  // namespace zeb::forms
