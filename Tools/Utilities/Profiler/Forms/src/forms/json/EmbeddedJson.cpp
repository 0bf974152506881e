#include "forms/json/EmbeddedJson.h"

#include <algorithm>
#include <array>
#include <streambuf>
#include <string_view>

namespace zeb::forms {

namespace {

class ScriptElementBuffer : public std::streambuf {
public:
    explicit ScriptElementBuffer(std::streambuf& target) : target_(target) { setp(begin(), end()); }

protected:
    int_type overflow(int_type character) override {
        if (sync() != 0) {
            return traits_type::eof();
        }
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            sputc(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }

    int sync() override {
        std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
        setp(begin(), end());
        while (!text.empty()) {
            const std::size_t plain = std::min(text.find_first_of("<>&"), text.size());
            if (!put(text.substr(0, plain)) || (plain < text.size() && !put(escaped(text[plain])))) {
                return -1;
            }
            text.remove_prefix(std::min(plain + 1, text.size()));
        }
        return 0;
    }

private:
    static std::string_view escaped(char character) {
        return character == '<' ? "\\u003c" : character == '>' ? "\\u003e" : "\\u0026";
    }

    [[nodiscard]] bool put(std::string_view text) {
        const auto size = static_cast<std::streamsize>(text.size());
        return target_.sputn(text.data(), size) == size;
    }

    char* begin() { return buffer_.data(); }
    char* end() { return buffer_.data() + buffer_.size(); }

    std::streambuf& target_;
    std::array<char, 8192> buffer_{};
};

}  // namespace

void writeEmbedded(std::ostream& out, const std::function<void(std::ostream& json)>& write) {
    ScriptElementBuffer buffer(*out.rdbuf());
    std::ostream json(&buffer);
    write(json);
    json.flush();
    if (!json) {
        out.setstate(std::ios::badbit);
    }
}

}  // namespace zeb::forms
