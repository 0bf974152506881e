#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "command/Failure.h"
#include "command/MemorySize.h"
#include "console/CommandManual.h"

/// The command lines of all commands: tables of options, which are their help too, and how what is given gets
/// from there into a struct of the command.
namespace zeb::command {

using Words = std::vector<std::string>;

enum class Action : std::uint8_t { work, showHelp, showVersion };

/// What stands behind an option.
enum class Takes : std::uint8_t {
    nothing,
    value,
    optionalValue,  ///< behind a "=" alone
    values,         ///< all words up to the next option
    valueEachTime,  ///< one, and the option may be given again
};

/// An option as it is given.
struct Given {
    std::string name;
    std::string value;  ///< empty for one that takes nothing
};

/// What an option asks of those that are given beside it.
struct Beside {
    std::string needs = {};   ///< the option without which it says nothing
    bool needsText = false;   ///< it says nothing while a form takes the text's place on standard output
    bool writesFile = false;  ///< its value is a file that no other option may write; "-" for standard output
};

/// A row of a command's table of options.
template <typename Options>
struct OptionRow {
    console::ManualOption manual;
    Takes takes;
    /// Puts it into the options. Throws Failure for a value that is none.
    void (*apply)(Options& options, const Given& given);
    std::string valueLeftOut = {};  ///< what an optional value is where it is not given
    Beside beside = {};
};

/// An option as the parser has to know it.
struct DeclaredOption {
    std::string name;
    Takes takes;
    std::string valueLeftOut;
};

/// Whether a command takes one word that belongs to no option.
enum class OwnWord : bool { none, one };

/// The words of a command line, sorted. All commands have --help, which is -h too, and --version besides.
class CommandLine {
public:
    /// @param words without the program's name; options may be given as "--name value" and as "--name=value"
    /// @throws Failure for wrong usage
    CommandLine(std::vector<DeclaredOption> options, OwnWord ownWord, std::span<const char* const> words);

    [[nodiscard]] Action action() const;
    [[nodiscard]] bool isGiven(std::string_view name) const;

    /// @return what is given behind the option each time, an empty text for one that takes nothing
    /// @param name of a declared option
    /// @throws Failure for a value that is empty or an option
    [[nodiscard]] const Words& valuesOf(std::string_view name) const;

    [[nodiscard]] const std::optional<std::string>& word() const { return word_; }
    /// @return the option that stands right in front of the word and may have a value behind a "=" alone,
    /// which
    ///         the word may be meant for
    [[nodiscard]] const std::optional<std::string>& optionBeforeWord() const { return optionBeforeWord_; }
    /// @return the words that belong to no option, unknown options among them; a "--" marks that the rest is
    /// none
    [[nodiscard]] const Words& remaining() const { return remaining_; }

private:
    struct Slot {
        DeclaredOption option;
        Words values;
    };

    std::size_t readOption(std::span<const char* const> words, std::size_t at);
    void readWord(const std::string& word);
    [[nodiscard]] std::size_t indexOf(std::string_view name) const;

    std::vector<Slot> slots_;
    std::optional<std::string> word_;
    std::optional<std::string> optionBeforeWord_;
    Words remaining_;
    OwnWord ownWord_;
    bool showsHelp_ = false;
    bool showsVersion_ = false;
};

/// @return what is wrong with an argument, with a word that the help says more
Failure wrongUsage(const std::string& line);
Failure wrongUsage(const std::string& argument, const std::string& cause);

/// @return the failure of a value that is none of the names, with the one that was meant
Failure noneOf(const Given& given, const Words& names);

/// @return the failure of an option that nobody knows, with the one that was meant
Failure unknownOption(const std::string& name, const Words& known);

/// An option that was given, with its row.
struct GivenBeside {
    Given given;
    Beside beside;
};

/// @throws Failure when one needs what is not there, or two of them write one file, by whatever path
void checkBeside(std::span<const GivenBeside> options);

/// @return whether a form has standard output for itself
inline bool isFormAlone(std::span<const Given> forms) {
    return std::any_of(forms.begin(), forms.end(), [](const Given& form) { return form.value == "-"; });
}

/// @return the help that follows from the rules
std::string helpOf(const Beside& beside);

/// @return the whole text as a number; nothing when it is none, or does not fit
template <typename Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// Of words that belong to no option some are files; behind a "--" all are.
/// @param known the names of all options
/// @throws Failure for a word that looks like an option
Words filesAmong(const Words& words, const Words& known);

/// @return the share of what is given in per cent, like 5, 0.5 or 5%
/// @throws Failure for what is none
double shareOfPercent(const Given& given);

/// The option --files-from, which names an InputList's file.
console::ManualOption filesFromOption();

/// The option --max-memory.
console::ManualOption maxMemoryOption();
/// @throws Failure
MemorySize maxMemoryOf(const Given& given);

/// @return the names of whatever has a `name`
template <typename Rows>
Words namesOf(const Rows& rows) {
    Words names;
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    return names;
}

template <typename Options>
Words optionNames(const std::vector<OptionRow<Options>>& rows) {
    Words names;
    for (const auto& row : rows) {
        names.push_back(row.manual.name);
    }
    names.insert(names.end(), {"--help", "--version"});
    return names;
}

/// @throws Failure for wrong usage
template <typename Options>
CommandLine parsedBy(const std::vector<OptionRow<Options>>& rows, OwnWord ownWord, int argc,
                     const char* const* argv) {
    std::vector<DeclaredOption> declared;
    for (const auto& row : rows) {
        declared.push_back({row.manual.name, row.takes, row.valueLeftOut});
    }
    const std::span words(argv, static_cast<std::size_t>(argc));
    return {std::move(declared), ownWord, words.subspan(words.empty() ? 0 : 1)};
}

/// Puts into the options what is given, in the order of the rows.
/// @throws Failure for a value that is none, and for options that don't go together
template <typename Options>
void applyGiven(const CommandLine& line, const std::vector<OptionRow<Options>>& rows, Options& options) {
    std::vector<GivenBeside> given;
    for (const auto& row : rows) {
        for (const std::string& value : line.valuesOf(row.manual.name)) {
            row.apply(options, {row.manual.name, value});
            given.push_back({{row.manual.name, value}, row.beside});
        }
    }
    checkBeside(given);
}

/// @param helpText of --help itself
/// @return the options for help, manual page and completions
template <typename Options>
std::vector<console::ManualOption> manualOf(const std::vector<OptionRow<Options>>& rows,
                                            const std::string& helpText = "Show this help.") {
    std::vector<console::ManualOption> options;
    for (const auto& row : rows) {
        options.push_back(row.manual);
        options.back().text += helpOf(row.beside);
    }
    options.push_back({"--help", "", helpText + " So does -h."});
    options.push_back({"--version", "", "Show the version."});
    return options;
}

}  // namespace zeb::command
