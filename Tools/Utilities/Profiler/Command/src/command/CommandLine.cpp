#include "command/CommandLine.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "command/FileIdentity.h"
#include "text/NearestName.h"

namespace zeb::command {

namespace {

constexpr const char* helpName = "--help";
constexpr const char* versionName = "--version";
constexpr std::string_view endOfOptions = "--";

bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-' && (word[1] < '0' || word[1] > '9');
}

bool takesWords(Takes takes) {
    return takes != Takes::nothing && takes != Takes::optionalValue;
}

bool takesOneValue(Takes takes) {
    return takes == Takes::value || takes == Takes::optionalValue;
}

bool isSame(const std::string& file, const std::string& other) {
    if (file == other) {
        return true;
    }
    const auto identity = file == "-" || other == "-" ? std::nullopt : identityOf(file);
    return identity && identity == identityOf(other);
}

void refuseSameFiles(std::span<const GivenBeside> options) {
    for (auto later = options.begin(); later != options.end(); ++later) {
        const auto other = std::find_if(options.begin(), later, [later](const GivenBeside& earlier) {
            return earlier.beside.writesFile && later->beside.writesFile &&
                   isSame(earlier.given.value, later->given.value);
        });
        if (other != later) {
            throw wrongUsage(later->given.name,
                             later->given.value == "-"
                                 ? "standard output takes one form, and " + other->given.name + " has it"
                                 : "goes to where " + other->given.name + " goes");
        }
    }
}

std::string meant(const std::string& name, const Words& names) {
    const auto nearest = profiling::nearestName(name, names);
    return nearest ? ", did you mean " + *nearest + "?" : "";
}

}  // namespace

CommandLine::CommandLine(std::vector<DeclaredOption> options, OwnWord ownWord,
                         std::span<const char* const> words)
    : slots_(options.size()), ownWord_(ownWord) {
    std::transform(options.begin(), options.end(), slots_.begin(), [](DeclaredOption& option) {
        return Slot{std::move(option), {}};
    });
    std::size_t at = 0;
    while (at < words.size() && words[at] != endOfOptions) {
        at = readOption(words, at);
    }
    if (at < words.size()) {
        remaining_.emplace_back(endOfOptions);
        while (++at < words.size()) {
            readWord(words[at]);
        }
    }
}

std::size_t CommandLine::readOption(std::span<const char* const> words, std::size_t at) {
    const std::string text = words[at++];
    if (text == helpName || text == "-h") {
        showsHelp_ = true;
        return at;
    }
    if (text == versionName) {
        showsVersion_ = true;
        return at;
    }
    const std::size_t equals = text.find('=');
    const std::size_t index = indexOf(text.substr(0, equals));
    if (index == slots_.size()) {
        looksLikeOption(text) ? remaining_.push_back(text) : readWord(text);
        return at;
    }
    auto& [option, values] = slots_[index];
    const auto& [name, takes, valueLeftOut] = option;
    if (equals != std::string::npos && (takes == Takes::nothing || equals + 1 == text.size())) {
        throw wrongUsage(name, takes == Takes::nothing ? "takes no value" : "needs a value");
    }
    if (takesOneValue(takes) && !values.empty()) {
        throw wrongUsage(name, "to be given once, with a value");
    }
    if (equals != std::string::npos) {
        values.push_back(text.substr(equals + 1));
        return at;
    }
    if (!takesWords(takes)) {
        values.push_back(valueLeftOut);
        if (takes == Takes::optionalValue && !word_ && at < words.size() && !looksLikeOption(words[at])) {
            optionBeforeWord_ = name;
        }
        return at;
    }
    if (at == words.size()) {
        throw wrongUsage(name, "needs a value");
    }
    do {
        values.emplace_back(words[at++]);
    } while (takes == Takes::values && at < words.size() && !looksLikeOption(words[at]) &&
             words[at] != endOfOptions);
    return at;
}

void CommandLine::readWord(const std::string& word) {
    if (ownWord_ == OwnWord::one && !word_) {
        word_ = word;
    } else {
        remaining_.push_back(word);
    }
}

Action CommandLine::action() const {
    return showsHelp_ ? Action::showHelp : showsVersion_ ? Action::showVersion : Action::work;
}

bool CommandLine::isGiven(std::string_view name) const {
    const std::size_t index = indexOf(name);
    return index < slots_.size() && !slots_[index].values.empty();
}

const Words& CommandLine::valuesOf(std::string_view name) const {
    const auto& [option, values] = slots_.at(indexOf(name));
    for (const std::string& value : values) {
        if (takesWords(option.takes) && value.empty()) {
            throw wrongUsage(option.name, "needs a value");
        }
        if (takesWords(option.takes) && value.starts_with("--")) {
            throw wrongUsage(option.name, "needs a value, and " + value + " is an option");
        }
    }
    return values;
}

std::size_t CommandLine::indexOf(std::string_view name) const {
    const auto found = std::find_if(slots_.begin(), slots_.end(),
                                    [name](const Slot& slot) { return slot.option.name == name; });
    return static_cast<std::size_t>(found - slots_.begin());
}

Failure wrongUsage(const std::string& line) {
    return Failure(ExitCode::usage, line).withHelp();
}

Failure wrongUsage(const std::string& argument, const std::string& cause) {
    return wrongUsage(argument + ": " + cause);
}

Failure noneOf(const Given& given, const Words& names) {
    const Words allButLast(names.begin(), names.end() - 1);
    const std::string cause =
        "\"" + given.value + "\" is none of " + console::namesInARow(allButLast) + " and " + names.back();
    const std::string nearest = meant(given.value, names);
    return nearest.empty() ? wrongUsage(given.name, cause)
                           : Failure(ExitCode::usage, given.name, cause + nearest);
}

Failure unknownOption(const std::string& name, const Words& known) {
    const std::string nearest = meant(name, known);
    return nearest.empty() ? wrongUsage(name, "unknown option")
                           : Failure(ExitCode::usage, name, "unknown option" + nearest);
}

void checkBeside(std::span<const GivenBeside> options) {
    for (const auto& [given, beside] : options) {
        if (!beside.needs.empty() &&
            std::none_of(options.begin(), options.end(), [&needed = beside.needs](const GivenBeside& other) {
                return other.given.name == needed;
            })) {
            throw wrongUsage(given.name, "needs " + beside.needs + " beside it");
        }
    }
    refuseSameFiles(options);
    const bool isFormAlone = std::any_of(options.begin(), options.end(), [](const GivenBeside& option) {
        return option.beside.writesFile && option.given.value == "-";
    });
    for (const auto& [given, beside] : options) {
        if (isFormAlone && beside.needsText) {
            throw wrongUsage(given.name, "there is no report while a form goes to standard output");
        }
    }
}

std::string helpOf(const Beside& beside) {
    return (beside.needs.empty() ? "" : " Needs " + beside.needs + ".") +
           (beside.needsText ? " Not with a form on standard output." : "");
}

Words filesAmong(const Words& words, const Words& known) {
    Words files;
    bool areAllFiles = false;
    for (const std::string& word : words) {
        if (!areAllFiles && word == "--") {
            areAllFiles = true;
        } else if (!areAllFiles && word.size() > 1 && word.starts_with('-')) {
            throw unknownOption(word.substr(0, word.find('=')), known);
        } else {
            files.push_back(word);
        }
    }
    return files;
}

double shareOfPercent(const Given& given) {
    std::string_view text = given.value;
    text.remove_suffix(text.ends_with('%') ? 1 : 0);
    double percent = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, percent, std::chars_format::fixed);
    if (error != std::errc() || rest != end || !(percent >= 0.0 && percent <= 1e12)) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no per cent like 5, 0.5 or 5%");
    }
    return percent / 100.0;
}

console::ManualOption filesFromOption() {
    return {"--files-from", " FILE",
            "Take further logs from FILE, a line each: the path and then, apart by tabs, its labels as "
            "KEY=VALUE. "
            "\"-\" is standard input."};
}

console::ManualOption maxMemoryOption() {
    return {
        "--max-memory", " SIZE",
        "The most memory to use, in bytes or with K, M or G behind the number. Default: three quarters of "
        "the machine's, or of the control group's."};
}

MemorySize maxMemoryOf(const Given& given) {
    const auto size = parseMemorySize(given.value);
    if (!size) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no size like 800M, 2G or 1000000");
    }
    return *size;
}

}  // namespace zeb::command
