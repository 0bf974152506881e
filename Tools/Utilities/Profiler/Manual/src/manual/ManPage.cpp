#include "manual/ManPage.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace zeb::manual {

namespace {

using console::CommandManual;
using console::ManualExample;
using console::ManualOption;
using console::ManualTable;

struct Escape {
    char character;
    std::string_view roff;
};
constexpr Escape escapes[] = {{'\\', "\\(rs"}, {'-', "\\-"},   {'\'', "\\(aq"}, {'"', "\\(dq"},
                              {'^', "\\(ha"},  {'~', "\\(ti"}, {'`', "\\(ga"},  {'\n', " "}};

// Characters as they are: nothing is a request, a hyphen or a typographical quote.
std::string literal(std::string_view text) {
    std::string roff = text.starts_with('.') ? "\\&" : "";
    for (const char character : text) {
        const auto* const escape =
            std::find_if(std::begin(escapes), std::end(escapes),
                         [character](const Escape& row) { return row.character == character; });
        roff += escape == std::end(escapes) ? std::string(1, character) : std::string(escape->roff);
    }
    return roff;
}

std::string bold(std::string_view text) {
    return "\\fB" + literal(text) + "\\fR";
}

std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

std::string section(const std::string& title) {
    return ".SH " + capitals(title) + "\n";
}

// "--csv FILE": the name as it is typed, the value as it is replaced.
std::string optionLabel(const ManualOption& option) {
    return bold(option.name) + (option.valueForm.empty() ? "" : "\\fI" + literal(option.valueForm) + "\\fR");
}

std::string entry(const std::string& label, std::string_view text) {
    return ".TP\n" + label + "\n" + literal(text) + "\n";
}

std::string entries(const ManualTable& table) {
    std::string roff;
    for (const auto& [label, text] : table.rows) {
        roff += entry(bold(label), text);
    }
    return roff;
}

std::string exampleText(const ManualExample& example) {
    const std::string purpose = example.purpose.empty() ? "" : ".PP\n" + literal(example.purpose) + ":\n";
    return purpose + ".EX\n    " + literal(example.command) + "\n.EE\n";
}

// A sentence as the line behind a name: in small letters, without its full stop.
std::string nameLine(std::string summary) {
    summary[0] = static_cast<char>(std::tolower(summary[0]));
    return summary.substr(0, summary.size() - (summary.ends_with('.') ? 1 : 0));
}

}  // namespace

std::string manPage(const CommandManual& manual, const Release& release,
                    std::span<const std::string> others) {
    std::string roff = ".TH " + capitals(literal(manual.name)) + " 1 " + release.date + " " +
                       release.version + " \"Zeb Profiler\"\n";
    roff += section("Name") + literal(manual.name) + " \\- " + literal(nameLine(manual.summary)) + "\n";
    roff += section("Synopsis");
    for (const std::string& usage : manual.usages) {
        roff +=
            (&usage == manual.usages.data() ? "" : ".br\n") + bold(manual.name) + " " + literal(usage) + "\n";
    }
    roff += section("Description") + literal(manual.summary) + "\n";
    for (const std::string& paragraph : manual.paragraphs) {
        roff += ".PP\n" + literal(paragraph) + "\n";
    }
    roff += section("Options");
    for (const ManualOption& option : manual.options) {
        roff += entry(optionLabel(option), option.text);
    }
    for (const ManualTable& table : manual.tables) {
        roff += section(table.title) + entries(table);
    }
    roff += section("Exit status") + literal(manual.exitCodes.title) + ":\n" + entries(manual.exitCodes);
    roff += section("Examples");
    for (const ManualExample& example : manual.examples) {
        roff += exampleText(example);
    }
    roff += section("See also");
    for (const std::string& other : others) {
        roff += ".BR " + literal(other) + " (1)" + (&other == &others.back() ? "\n" : " ,\n");
    }
    return roff;
}

}  // namespace zeb::manual
