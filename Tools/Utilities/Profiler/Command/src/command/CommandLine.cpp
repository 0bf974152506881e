#include "command/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "text/NearestName.h"

namespace zeb::command {

namespace {

constexpr const char* helpName = "--help";
constexpr const char* versionName = "--version";

bool takesValue(const DeclaredOption& option) {
    return option.takes != Takes::nothing && option.takes != Takes::optionalValue;
}

// The parser takes the word behind an option that ends in its "=" for its value.
void refuseEmptyValues(const std::vector<DeclaredOption>& options, int argc, const char* const* argv) {
    for (int index = 1; index < argc && std::string_view(argv[index]) != "--"; ++index) {
        for (const DeclaredOption& option : options) {
            if (option.takes != Takes::nothing && argv[index] == option.name + "=") {
                throw wrongUsage(option.name, "needs a value");
            }
        }
    }
}

std::string meant(const std::string& name, const Words& names) {
    const auto nearest = profiling::nearestName(name, names);
    return nearest ? ", did you mean " + *nearest + "?" : "";
}

}  // namespace

// Values stay texts, so that every complaint about one is worded by its command.
struct CommandLine::Parser {
    struct Slot {
        std::string text;
        Words texts;
        bool isOn = false;
    };

    Parser(std::vector<DeclaredOption> declared, const std::string& wordName)
        : options(std::move(declared)), slots(options.size()) {
        app.set_help_flag();
        app.allow_extras();
        app.add_flag(helpName, showsHelp);
        app.add_flag(versionName, showsVersion);
        if (!wordName.empty()) {
            app.add_option(wordName, word);
        }
        for (std::size_t index = 0; index < slots.size(); ++index) {
            declare(options[index], slots[index]);
        }
    }

    void declare(const DeclaredOption& option, Slot& slot) {
        switch (option.takes) {
            case Takes::nothing:
                app.add_flag(option.name, slot.isOn);
                break;
            case Takes::value:
                app.add_option(option.name, slot.text);
                break;
            case Takes::optionalValue:
                app.add_flag(option.name + "{" + option.valueLeftOut + "}", slot.text)
                    ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
                break;
            case Takes::values:
            case Takes::valueEachTime:
                app.add_option(option.name, slot.texts)->allow_extra_args(option.takes == Takes::values);
                break;
        }
    }

    void parse(int argc, const char* const* argv) {
        try {
            app.parse(argc, argv);
        } catch (const CLI::ArgumentMismatch& error) {
            // The parser's text names the option, and tells the rest in its own terms.
            const std::string text = error.what();
            throw wrongUsage(text.substr(0, text.find(':')), "to be given once, with a value");
        } catch (const CLI::ParseError& error) {
            throw wrongUsage(error.what());
        }
    }

    [[nodiscard]] std::size_t indexOf(std::string_view name) const {
        const auto found = std::find_if(options.begin(), options.end(),
                                        [name](const DeclaredOption& option) { return option.name == name; });
        return static_cast<std::size_t>(found - options.begin());
    }

    CLI::App app;
    std::vector<DeclaredOption> options;
    std::vector<Slot> slots;
    std::optional<std::string> word;
    bool showsHelp = false;
    bool showsVersion = false;
};

CommandLine::CommandLine(std::vector<DeclaredOption> options, const std::string& wordName, int argc,
                         const char* const* argv) {
    refuseEmptyValues(options, argc, argv);
    parser_ = std::make_unique<Parser>(std::move(options), wordName);
    parser_->parse(argc, argv);
}

CommandLine::~CommandLine() = default;

Action CommandLine::action() const {
    return parser_->showsHelp ? Action::showHelp : parser_->showsVersion ? Action::showVersion : Action::work;
}

bool CommandLine::isGiven(std::string_view name) const {
    const std::size_t index = parser_->indexOf(name);
    return parser_->options[index].takes == Takes::nothing ? parser_->slots[index].isOn
                                                           : parser_->app.count(std::string(name)) != 0;
}

Words CommandLine::valuesOf(std::string_view name) const {
    const std::size_t index = parser_->indexOf(name);
    const DeclaredOption& option = parser_->options[index];
    const auto& [text, texts, isOn] = parser_->slots[index];
    Words values =
        option.takes == Takes::values || option.takes == Takes::valueEachTime ? texts : Words{text};
    for (const std::string& value : values) {
        if (takesValue(option) && value.empty()) {
            throw wrongUsage(option.name, "needs a value");
        }
        if (takesValue(option) && value.starts_with("--")) {
            throw wrongUsage(option.name, "needs a value, and " + value + " is an option");
        }
    }
    return values;
}

const std::optional<std::string>& CommandLine::word() const {
    return parser_->word;
}

Words CommandLine::remaining() const {
    return parser_->app.remaining();
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
        "\"" + given.value + "\" is none of " + profiling::namesInARow(allButLast) + " and " + names.back();
    const std::string nearest = meant(given.value, names);
    return nearest.empty() ? wrongUsage(given.name, cause)
                           : Failure(ExitCode::usage, given.name, cause + nearest);
}

Failure unknownOption(const std::string& name, const Words& known) {
    const std::string nearest = meant(name, known);
    return nearest.empty() ? wrongUsage(name, "unknown option")
                           : Failure(ExitCode::usage, name, "unknown option" + nearest);
}

void refuseSameFiles(std::span<const Given> files) {
    for (auto later = files.begin(); later != files.end(); ++later) {
        const auto other = std::find_if(files.begin(), later,
                                        [later](const Given& file) { return file.value == later->value; });
        if (other != later && !later->value.empty()) {
            throw wrongUsage(later->name, later->value == "-" ? "standard output takes one form, and " +
                                                                    other->name + " has it"
                                                              : "goes to where " + other->name + " goes");
        }
    }
}

profiling::ManualOption maxMemoryOption() {
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
