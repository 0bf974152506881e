#include "Page.h"

#include <array>
#include <streambuf>
#include <string>
#include <string_view>

#include "ExecutionPicture.h"
#include "PageParts.h"
#include "RunJson.h"

namespace zeb::forms {

namespace {

// Takes JSON to where a script element holds it. What could end the element, or begin a comment in it, can
// only stand within strings of JSON, and there it has another form.
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

void writeRun(std::ostream& out, const analysis::Run& run, std::size_t mostExecutions) {
    ScriptElementBuffer buffer(*out.rdbuf());
    std::ostream json(&buffer);
    writeRunJson(json, run, BigNumbers::asText, mostExecutions);
    json.flush();
    if (!json) {
        out.setstate(std::ios::badbit);
    }
}

}  // namespace

void writePage(std::ostream& out, const analysis::Run& run) {
    const std::size_t mostSingles = mostSinglesOfGraph(run);
    out << pageParts.beforeRun;
    writeRun(out, run, mostSingles);
    out << pageParts.beforeExecutions << '[';
    std::string json;
    for (const analysis::Graph& graph : run.graphs) {
        json.assign(&graph == run.graphs.data() ? "" : ",");
        appendJson(json, pictureOf(graph, mostSingles));
        out << json;
    }
    out << ']' << pageParts.behind;
}

}  // namespace zeb::forms
