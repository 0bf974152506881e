#include "CommandOptions.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstddef>
#include <limits>
#include <memory>

namespace zeb::samplelog {

namespace {

constexpr std::size_t helpColumn = 26;
constexpr std::uint64_t maxCount = 1'000'000;

constexpr const char* aboutText = R"(Writes a profiling log as a runtime would write it.
)";

constexpr const char* detailsText = R"(Kinds of log:
  network          a run of an image classifier with its layers, times and objects
  methods          a message of every method and every kind of value, small enough to
                   check its reports by hand
  adapter-updater  a log of the adapter updater
  shared-events    a hostile log: a few kilobytes whose event tables share their
                   sub-events down to the deepest level that a reader takes, so that
                   they stand for more than two billion events. It passes every check.
                   Reading it takes more time and memory than a machine has: limit both.

The same options give the same bytes, on every machine. FILE may be /dev/stdout. What FILE
held before is lost.

Exit codes:
  0  good
  2  wrong usage
  3  FILE can't be written

Examples:
  write-sample-log sample.zlog
  write-sample-log --async --level internal --executions 100 sample.zlog
  write-sample-log --kind methods methods.zlog)";

template <typename Meaning>
struct Choice {
    std::string_view text;
    Meaning meaning;
};

constexpr Choice<LogKind> kinds[] = {{"network", LogKind::network},
                                     {"methods", LogKind::methods},
                                     {"adapter-updater", LogKind::adapterUpdater},
                                     {"shared-events", LogKind::sharedEvents}};

constexpr Choice<ProfileLevel> levels[] = {
    {"basic", ProfileLevel::basic},       {"detailed", ProfileLevel::detailed},
    {"internal", ProfileLevel::internal}, {"1", ProfileLevel::basic},
    {"2", ProfileLevel::detailed},        {"1100", ProfileLevel::internal}};

class HelpFormatter final : public CLI::Formatter {
public:
    HelpFormatter() { column_width(helpColumn); }

    std::string make_usage(const CLI::App* /*app*/, std::string name) const override {
        return "Usage: " + name + " [options] FILE\n";
    }
    std::string make_positionals(const CLI::App* /*app*/) const override { return {}; }
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }
};

// The declared options and what they fill. Values stay texts, so that every complaint is worded here.
struct CommandLine {
    CommandLine();

    [[nodiscard]] bool has(const std::string& name) const { return app.count(name) != 0; }

    CLI::App app{aboutText, std::string(programName)};
    std::string file;
    std::string kind;
    std::string level;
    std::string executions;
    std::string layers;
    std::string graphs;
    std::string seed;
    bool async = false;
    bool help = false;
    bool version = false;
};

CommandLine::CommandLine() {
    app.set_help_flag();
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(detailsText);
    app.add_option("FILE", file);
    app.add_option("--kind", kind,
                   "Kind of log: network (default), methods, adapter-updater or\n"
                   "shared-events. The options below are for a network.")
        ->type_name("KIND");
    app.add_flag("--async", async, "Execute asynchronously, with queue waits.");
    app.add_option("--level", level,
                   "Profiling level: basic (1), detailed (2, default) or internal (1100).\n"
                   "At level basic there is no data on layers.")
        ->type_name("LEVEL");
    app.add_option("--executions", executions, "Executions of each graph, 1 to 1000000. Default 20.")
        ->type_name("N");
    app.add_option("--layers", layers,
                   "ZEB layers of each graph, 1 to 1000000. Default: the 32 that the\n"
                   "network has. Further ones have about four ORU layers each.")
        ->type_name("N");
    app.add_option("--graphs", graphs, "Graphs, 1 to 1000000. Default 1.")->type_name("N");
    app.add_option("--seed", seed, "Add random variation to the times. Without it nothing is random.")
        ->type_name("N");
    app.add_flag("--help", help, "Show this help.");
    app.add_flag("--version", version, "Show the version.");
}

UsageError usageError(const std::string& line) {
    return UsageError(line + "; see " + std::string(programName) + " --help");
}

// The parser's text names the option, and tells the rest in its own terms.
UsageError usageError(const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    return usageError(text.substr(0, text.find(':')) + ": to be given once, with a value");
}

template <typename Meaning, std::size_t count>
Meaning parseChoice(const std::string& name, const std::string& value,
                    const Choice<Meaning> (&choices)[count]) {
    std::string texts;
    for (const auto& [text, meaning] : choices) {
        if (text == value) {
            return meaning;
        }
        texts.append(texts.empty() ? "" : ", ").append(text);
    }
    throw usageError(name + ": \"" + value + "\" is none of " + texts);
}

std::uint64_t parseNumber(const std::string& name, const std::string& value, std::uint64_t min,
                          std::uint64_t max) {
    std::uint64_t number = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || rest != end || number < min || number > max) {
        throw usageError(name + ": \"" + value + "\" is no number from " + std::to_string(min) + " to " +
                         std::to_string(max));
    }
    return number;
}

void parseCounts(const CommandLine& line, NetworkOptions& options) {
    const struct {
        const char* name;
        const std::string& text;
        std::uint32_t& count;
    } counts[] = {{"--executions", line.executions, options.executions},
                  {"--layers", line.layers, options.layers},
                  {"--graphs", line.graphs, options.graphs}};
    for (const auto& [name, text, count] : counts) {
        if (line.has(name)) {
            count = static_cast<std::uint32_t>(parseNumber(name, text, 1, maxCount));
        }
    }
}

// An option that would change nothing is a mistake.
void refuseNetworkOptions(const CommandLine& line) {
    for (const char* const name : {"--async", "--level", "--executions", "--layers", "--graphs", "--seed"}) {
        if (line.has(name)) {
            throw usageError(std::string(name) + ": is for a log of the kind network only");
        }
    }
}

NetworkOptions parseNetworkOptions(const CommandLine& line) {
    NetworkOptions options;
    options.async = line.async;
    if (line.has("--level")) {
        options.level = parseChoice("--level", line.level, levels);
    }
    if (line.has("--seed")) {
        options.seed = parseNumber("--seed", line.seed, 0, std::numeric_limits<std::uint64_t>::max());
    }
    parseCounts(line, options);
    return options;
}

}  // namespace

CommandOptions parseCommandLine(int argc, const char* const* argv) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& error) {
        throw usageError(error);
    } catch (const CLI::ExtrasError&) {
        throw usageError(line.app.remaining().front() + ": no option, and FILE is given");
    } catch (const CLI::ParseError& error) {
        throw usageError(error.what());
    }
    CommandOptions options;
    if (line.help || line.version) {
        options.action = line.help ? Action::showHelp : Action::showVersion;
        return options;
    }
    if (line.has("--kind")) {
        options.kind = parseChoice("--kind", line.kind, kinds);
    }
    if (options.kind == LogKind::network) {
        options.network = parseNetworkOptions(line);
    } else {
        refuseNetworkOptions(line);
    }
    if (line.file.empty()) {
        throw usageError("no FILE given");
    }
    options.file = line.file;
    return options;
}

std::string helpText() {
    return CommandLine().app.help();
}

}  // namespace zeb::samplelog
