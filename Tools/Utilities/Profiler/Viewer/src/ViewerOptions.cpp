#include "ViewerOptions.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>
#include <string_view>

#include "Failure.h"

namespace zeb::viewer {

namespace {

constexpr int minLevel = -128;
constexpr int maxLevel = 127;
constexpr std::size_t helpColumn = 26;

constexpr const char* aboutText = R"(Reads a profiling log and prints the report of its run.
)";

constexpr const char* detailsText =
    R"(Options that the viewer doesn't know go to the reader. Give them behind LOG, and their values as --name=value
or as the words behind the name. A "--" ends the options: what follows it are file names.

LOG may also be a pipe: use /dev/stdin to read the log from standard input.

Exit codes:
  0  good
  1  the log can't be read, needs more memory than it may have, or names objects outside of DIR
  2  wrong usage, or the reader has shown its help
  3  the CSV file, an object or standard output can't be written; the CSV file is as it was
  4  the reader plug-in can't be loaded
  5  the report failed on a value in the log

Examples:
  zeb-profile-viewer run.log
  zeb-profile-viewer --csv runs.csv run.log --internal
  zeb-profile-viewer --save-objects=objects run.log
  zeb-profile-viewer --reader generic --level 2 run.log
  zcat run.log.gz | zeb-profile-viewer /dev/stdin)";

class HelpFormatter final : public CLI::Formatter {
public:
    HelpFormatter() { column_width(helpColumn); }

    std::string make_usage(const CLI::App* /*app*/, std::string name) const override {
        return "Usage: " + name + " [options] LOG [reader options]\n";
    }
    std::string make_positionals(const CLI::App* /*app*/) const override { return {}; }
    std::string make_option_name(const CLI::Option* option, bool /*isPositional*/) const override {
        return option->get_name();
    }
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_size() == 0 ? "" : option->get_type_name();
        return type.empty() || type.starts_with('[') ? type : " " + type;
    }
};

// The declared options and what they fill. Numbers stay text, so that help is shown whatever they hold.
struct CommandLine {
    CommandLine();

    CLI::App app{aboutText, std::string(programName)};
    ViewerOptions options;
    std::string level;
    std::string maxMemory;
    std::string objectDirectory;
    bool help = false;
    bool version = false;
};

CommandLine::CommandLine() {
    app.set_help_flag();
    app.allow_extras();
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(detailsText);
    app.add_option("LOG", options.log);
    app.add_option("--reader", options.reader,
                   "Plug-in that reads the log: murl (default), generic, or the path of a\n"
                   "library. A name is looked for beside this program, in its ../lib and\n"
                   "where the loader looks.")
        ->type_name("NAME|PATH");
    app.add_option("--csv", options.csv, "Append the CSV report to FILE.")->type_name("FILE");
    app.add_flag("--raw", options.raw,
                 "Let control characters in names and texts of the log reach a terminal, where\n"
                 "they show as \"?\" otherwise. A file or a pipe gets them in any case.");
    app.add_option("--level", level,
                   "Visibility level, -128 to 127: messages of this level and above are\n"
                   "left out. Default 127: everything below it.")
        ->type_name("N");
    app.add_flag("--save-objects{.}", objectDirectory,
                 "Let the reader save object events to files in the directory DIR (default:\n"
                 "the working directory). Files that are there are not overwritten, and a\n"
                 "log whose object names lead out of the directory is refused.")
        ->type_name("[=DIR]")
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    app.add_flag("--trust-object-names", options.trustObjectNames,
                 "Save objects under whatever names the log gives them.");
    app.add_option("--max-memory", maxMemory,
                   "The most memory to use, in bytes or with K, M or G behind the number.\n"
                   "Default: three quarters of the machine's, or of the control group's.")
        ->type_name("SIZE");
    app.add_flag("--help", help, "Show this help and that of the reader.");
    app.add_flag("--version", version, "Show the version.");
}

Failure usageFailure(const std::string& line) {
    return {ExitCode::usage, line + "; see " + std::string(programName) + " --help"};
}

Failure usageFailure(const std::string& argument, const std::string& cause) {
    return usageFailure(argument + ": " + cause);
}

// The parser's text names the option, and tells the rest in its own terms.
Failure usageFailure(const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    return usageFailure(text.substr(0, text.find(':')), "to be given once, with a value");
}

// The parser takes the word behind an option that ends in its "=" for its value.
void refuseEmptyValues(int argc, const char* const* argv) {
    for (int index = 1; index < argc && std::string_view(argv[index]) != "--"; ++index) {
        for (const std::string name : {"--reader", "--csv", "--level", "--save-objects", "--max-memory"}) {
            if (argv[index] == name + "=") {
                throw usageFailure(name, "needs a value");
            }
        }
    }
}

void checkValue(const CLI::App& app, const std::string& name, const std::string& value) {
    if (app.count(name) == 0) {
        return;
    }
    if (value.empty()) {
        throw usageFailure(name, "needs a value");
    }
    if (value.starts_with("--")) {
        throw usageFailure(name, "needs a value, and " + value + " is an option");
    }
}

profiling::VisibilityLevel parseLevel(const std::string& text) {
    int level = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, level);
    if (error != std::errc() || rest != end || level < minLevel || level > maxLevel) {
        throw usageFailure("--level", "\"" + text + "\" is no number from -128 to 127");
    }
    return profiling::VisibilityLevel{static_cast<std::int8_t>(level)};
}

MemorySize parseMaxMemory(const std::string& text) {
    const auto size = parseMemorySize(text);
    if (!size) {
        throw usageFailure("--max-memory", "\"" + text + "\" is no size like 800M, 2G or 1000000");
    }
    return *size;
}

}  // namespace

ViewerOptions parseCommandLine(int argc, const char* const* argv) {
    refuseEmptyValues(argc, argv);
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& error) {
        throw usageFailure(error);
    } catch (const CLI::ParseError& error) {
        throw usageFailure(error.what());
    }
    ViewerOptions& options = line.options;
    checkValue(line.app, "--reader", options.reader);
    checkValue(line.app, "--csv", options.csv);
    options.readerArguments = line.app.remaining();
    if (line.help || line.version) {
        options.action = line.help ? Action::showHelp : Action::showVersion;
        return options;
    }
    if (line.app.count("--level") != 0) {
        options.level = parseLevel(line.level);
    }
    if (line.app.count("--max-memory") != 0) {
        options.maxMemory = parseMaxMemory(line.maxMemory);
    }
    if (line.app.count("--save-objects") != 0) {
        options.objectDirectory = line.objectDirectory;
    }
    if (line.app.count("LOG") == 0) {
        throw usageFailure("no LOG given");
    }
    return options;
}

std::vector<std::string> viewerOptionNames() {
    const CommandLine line;
    std::vector<std::string> names;
    for (const CLI::Option* const option : line.app.get_options()) {
        if (!option->get_positional()) {
            names.push_back(option->get_name());
        }
    }
    return names;
}

std::string helpText() {
    return CommandLine().app.help();
}

}  // namespace zeb::viewer
