#include "CommandOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <vector>

#include "text/NearestName.h"

namespace zeb::samplelog {

namespace {

constexpr std::uint32_t maxCount = 1'000'000;
constexpr std::uint32_t maxDrift = 15;  // per cent; no draw is further off than six times that
constexpr std::uint32_t maxSlower = 1000;

struct Level {
    std::string_view name;
    std::string_view number;
    ProfileLevel level;
};
constexpr Level levels[] = {{"basic", "1", ProfileLevel::basic},
                            {"detailed", "2", ProfileLevel::detailed},
                            {"internal", "1100", ProfileLevel::internal}};

UsageError usageError(const std::string& line) {
    return UsageError(line + "; see " + std::string(programName) + " --help");
}

// The parser's text names the option, and tells the rest in its own terms.
UsageError usageError(const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    return usageError(text.substr(0, text.find(':')) + ": to be given once, with a value");
}

UsageError noneOf(const std::string& name, const std::string& value, const std::vector<std::string>& names) {
    const std::string line = name + ": \"" + value + "\" is none of " + profiling::namesInARow(names);
    const auto meant = profiling::nearestName(value, names);
    return meant ? UsageError(line + ", did you mean " + *meant + "?") : usageError(line);
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

template <typename Rows>
std::vector<std::string> namesOf(const Rows& rows) {
    std::vector<std::string> names;
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    return names;
}

const SampleKind* parseKind(const std::string& name, const std::string& value) {
    for (const SampleKind& kind : sampleKinds) {
        if (kind.name == value) {
            return &kind;
        }
    }
    throw noneOf(name, value, namesOf(sampleKinds));
}

ProfileLevel parseLevel(const std::string& name, const std::string& value) {
    std::vector<std::string> names = namesOf(levels);
    for (const Level& level : levels) {
        if (level.name == value || level.number == value) {
            return level.level;
        }
        names.emplace_back(level.number);
    }
    throw noneOf(name, value, names);
}

// The values of an option that can be named.
std::vector<std::string> valuesOf(std::string_view option) {
    return option == "--kind"    ? namesOf(sampleKinds)
           : option == "--level" ? namesOf(levels)
                                 : std::vector<std::string>();
}

std::uint32_t parseCount(const std::string& name, const std::string& value) {
    return static_cast<std::uint32_t>(parseNumber(name, value, 1, maxCount));
}

// A per cent with four digits at most behind its point, in millionths of the whole.
std::uint32_t parsePercent(const std::string& name, const std::string& value, std::uint32_t maxPercent) {
    const auto areDigits = [](std::string_view text) {
        return text.size() <= 4 && std::all_of(text.begin(), text.end(), [](char character) {
                   return character >= '0' && character <= '9';
               });
    };
    const std::size_t point = std::min(value.find('.'), value.size());
    const std::string whole = value.substr(0, point);
    const std::string fraction = value.substr(std::min(point + 1, value.size()));
    const std::uint32_t tooMuch = maxPercent * 10'000 + 1;
    std::uint32_t millionths = tooMuch;
    if (!whole.empty() && areDigits(whole) && areDigits(fraction)) {
        millionths =
            static_cast<std::uint32_t>(std::stoul(whole + fraction + std::string(4 - fraction.size(), '0')));
    }
    if (millionths >= tooMuch) {
        throw usageError(name + ": \"" + value + "\" is no per cent from 0 to " + std::to_string(maxPercent) +
                         ", with four digits at most behind the point");
    }
    return millionths;
}

std::uint32_t parseDrift(const std::string& name, const std::string& value, const NetworkOptions& options) {
    if (!options.seed) {
        throw usageError(name + ": takes a --seed");
    }
    return parsePercent(name, value, maxDrift);
}

SlowerLayer parseSlowerLayer(const std::string& name, const std::string& value,
                             const NetworkOptions& options) {
    const std::size_t equals = value.rfind('=');
    if (equals == std::string::npos) {
        throw usageError(name + ": \"" + value + "\" is no NAME=PERCENT");
    }
    const std::string layer = value.substr(0, equals);
    const std::vector<std::string> layers = makeNetwork(options.layers).zebLayerNames;
    if (std::find(layers.begin(), layers.end(), layer) == layers.end()) {
        throw usageError(name + ": the network has no layer \"" + layer + "\"");
    }
    return {layer, parsePercent(name, value.substr(equals + 1), maxSlower)};
}

struct Given {
    std::string name;
    std::string value;
};

struct OptionRow {
    std::string name;
    std::string_view valueName;  ///< as help shows it; empty for an option without a value
    bool isForNetwork;           ///< for a kind of log that takes such options, and else wrong usage
    std::string help;
    void (*apply)(CommandOptions& options, const Given& given);
};

// All options, in the order of the help and in which they take effect.
const std::vector<OptionRow>& optionRows() {
    static const std::string counts = "1 to " + std::to_string(maxCount);
    static const std::vector<OptionRow> rows = {
        {"--kind", "KIND", false,
         "Kind of log, see below. Default " + std::string(sampleKinds[0].name) +
             "; the options that follow are\nfor that kind.",
         [](auto& options, const auto& given) { options.kind = parseKind(given.name, given.value); }},
        {"--async", "", true, "Execute asynchronously, with queue waits.",
         [](auto& options, const auto& /*given*/) { options.network.async = true; }},
        {"--level", "LEVEL", true,
         "Profiling level: basic (1), detailed (2, default) or internal (1100).\n"
         "At level basic there is no data on layers.",
         [](auto& options, const auto& given) {
             options.network.level = parseLevel(given.name, given.value);
         }},
        {"--executions", "N", true, "Executions of each graph, " + counts + ". Default 20.",
         [](auto& options, const auto& given) {
             options.network.executions = parseCount(given.name, given.value);
         }},
        {"--layers", "N", true,
         "ZEB layers of each graph, " + counts +
             ". Default: the 32 that the\n"
             "network has. Further ones have about four ORU layers each.",
         [](auto& options, const auto& given) {
             options.network.layers = parseCount(given.name, given.value);
         }},
        {"--graphs", "N", true, "Graphs, " + counts + ". Default 1.",
         [](auto& options, const auto& given) {
             options.network.graphs = parseCount(given.name, given.value);
         }},
        {"--seed", "N", true, "Add random variation to the times. Without it nothing is random.",
         [](auto& options, const auto& given) {
             options.network.seed =
                 parseNumber(given.name, given.value, 0, std::numeric_limits<std::uint64_t>::max());
         }},
        {"--drift", "PERCENT", true,
         "Multiply all times of the log by one random factor with this standard\n"
         "deviation, 0 to " +
             std::to_string(maxDrift) + ". It takes a --seed.",
         [](auto& options, const auto& given) {
             options.network.driftMillionths = parseDrift(given.name, given.value, options.network);
         }},
        {"--slower", "PERCENT", true,
         "Make all times longer by 0 to " + std::to_string(maxSlower) + " per cent.",
         [](auto& options, const auto& given) {
             options.network.slowerMillionths = parsePercent(given.name, given.value, maxSlower);
         }},
        {"--slower-layer", "NAME=PERCENT", true,
         "Make the times of the ZEB layer NAME longer by 0 to " + std::to_string(maxSlower) + " per cent.",
         [](auto& options, const auto& given) {
             options.network.slowerLayer = parseSlowerLayer(given.name, given.value, options.network);
         }},
        {"--help", "", false, "Show this help.",
         [](auto& options, const auto& /*given*/) { options.action = Action::showHelp; }},
        {"--version", "", false, "Show the version.",
         [](auto& options, const auto& /*given*/) {
             options.action = options.action == Action::showHelp ? Action::showHelp : Action::showVersion;
         }},
    };
    return rows;
}

// The options as they are declared to the parser. Values stay texts, so that every complaint is worded here.
class CommandLine {
public:
    CommandLine() : slots_(optionRows().size()) {
        app_.set_help_flag();
        app_.add_option("FILE", file_);
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            const OptionRow& row = optionRows()[index];
            if (row.valueName.empty()) {
                app_.add_flag(row.name, slots_[index].isOn);
            } else {
                app_.add_option(row.name, slots_[index].text);
            }
        }
    }

    void parse(int argc, const char* const* argv) { app_.parse(argc, argv); }

    // Calls with each option that is given.
    template <typename Call>
    void forEach(Call call) const {
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            const OptionRow& row = optionRows()[index];
            if (row.valueName.empty() ? slots_[index].isOn : app_.count(row.name) != 0) {
                call(row, Given{row.name, slots_[index].text});
            }
        }
    }

    [[nodiscard]] const std::string& file() const { return file_; }
    [[nodiscard]] std::vector<std::string> remaining() const { return app_.remaining(); }

private:
    struct Slot {
        std::string text;
        bool isOn = false;
    };

    CLI::App app_;
    std::string file_;
    std::vector<Slot> slots_;
};

Action actionOf(const CommandLine& line) {
    CommandOptions options;
    line.forEach([&options](const OptionRow& row, const Given& given) {
        if (row.valueName.empty()) {
            row.apply(options, given);
        }
    });
    return options.action;
}

}  // namespace

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good";
        case ExitCode::usage:
            return "wrong usage";
        case ExitCode::badOutput:
            return "FILE can't be written";
    }
    return {};
}

CommandOptions parseCommandLine(int argc, const char* const* argv) {
    CommandLine line;
    try {
        line.parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& error) {
        throw usageError(error);
    } catch (const CLI::ExtrasError&) {
        throw usageError(line.remaining().front() + ": no option, and FILE is given");
    } catch (const CLI::ParseError& error) {
        throw usageError(error.what());
    }
    CommandOptions options;
    options.action = actionOf(line);
    if (options.action != Action::writeLog) {
        return options;
    }
    line.forEach([&options](const OptionRow& row, const Given& given) {
        if (row.isForNetwork && !options.kind->takesNetworkOptions) {  // it would change nothing
            throw usageError(row.name + ": is for a log of the kind " + std::string(sampleKinds[0].name) +
                             " only");
        }
        row.apply(options, given);
    });
    if (line.file().empty()) {
        throw usageError("no FILE given");
    }
    options.file = line.file();
    return options;
}

profiling::CommandManual commandManual() {
    profiling::CommandManual manual{
        .name = std::string(programName),
        .summary = "Writes a profiling log as a runtime would write it.",
        .usages = {"[options] FILE"},
        .options = {},
        .tables = {{"Kinds of log", {}}},
        .paragraphs =
            {"The same options give the same bytes, on every machine. FILE may be /dev/stdout. What "
             "FILE held before is lost."},
        .exitCodes = {"Exit codes", profiling::rowsOf(meaningOf)},
        .examples = {{"", "write-sample-log sample.zlog"},
                     {"", "write-sample-log --async --level internal --executions 100 sample.zlog"},
                     {"", "write-sample-log --kind methods methods.zlog"}}};
    for (const OptionRow& row : optionRows()) {
        manual.options.push_back({row.name, (row.valueName.empty() ? "" : " ") + std::string(row.valueName),
                                  row.help, valuesOf(row.name)});
    }
    for (const SampleKind& kind : sampleKinds) {
        manual.tables[0].rows.push_back({std::string(kind.name), std::string(kind.help)});
    }
    return manual;
}

}  // namespace zeb::samplelog
