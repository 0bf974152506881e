#include "samplelog/command/CommandOptions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace zeb::samplelog {

namespace {

using command::CommandLine;
using command::ExitCode;
using command::Given;
using command::Takes;
using command::wrongUsage;

constexpr std::uint32_t maxCount = 1'000'000;
constexpr std::uint32_t maxDrift = 15;  // per cent; no draw is further off than six times that
constexpr std::uint32_t maxSlower = 1000;
constexpr std::uint32_t maxSlowing = 100;
constexpr std::uint32_t maxWander = 99;

struct Level {
    std::string_view name;
    std::string_view number;
    ProfileLevel level;
};
constexpr Level levels[] = {{"basic", "1", ProfileLevel::basic},
                            {"detailed", "2", ProfileLevel::detailed},
                            {"internal", "1100", ProfileLevel::internal}};

std::uint64_t integerOf(const Given& given, std::uint64_t min, std::uint64_t max) {
    const auto number = command::numberOf<std::uint64_t>(given.value);
    if (!number || *number < min || *number > max) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no number from " + std::to_string(min) +
                                         " to " + std::to_string(max));
    }
    return *number;
}

std::uint32_t countOf(const Given& given) {
    return static_cast<std::uint32_t>(integerOf(given, 1, maxCount));
}

const SampleKind* kindOf(const Given& given) {
    for (const SampleKind& kind : sampleKinds) {
        if (kind.name == given.value) {
            return &kind;
        }
    }
    throw noneOf(given, command::namesOf(sampleKinds));
}

ProfileLevel levelOf(const Given& given) {
    command::Words names = command::namesOf(levels);
    for (const Level& level : levels) {
        if (level.name == given.value || level.number == given.value) {
            return level.level;
        }
        names.emplace_back(level.number);
    }
    throw noneOf(given, names);
}

// A per cent with four digits at most behind its point, in millionths of the whole.
std::uint32_t millionthsOf(const Given& given, std::uint32_t maxPercent) {
    const auto areDigits = [](std::string_view text) {
        return text.size() <= 4 && std::all_of(text.begin(), text.end(), [](char character) {
                   return character >= '0' && character <= '9';
               });
    };
    const std::size_t point = std::min(given.value.find('.'), given.value.size());
    const std::string whole = given.value.substr(0, point);
    const std::string fraction = given.value.substr(std::min(point + 1, given.value.size()));
    const std::uint32_t tooMuch = maxPercent * 10'000 + 1;
    std::uint32_t millionths = tooMuch;
    if (!whole.empty() && areDigits(whole) && areDigits(fraction)) {
        millionths =
            static_cast<std::uint32_t>(std::stoul(whole + fraction + std::string(4 - fraction.size(), '0')));
    }
    if (millionths >= tooMuch) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no per cent from 0 to " +
                                         std::to_string(maxPercent) +
                                         ", with four digits at most behind the point");
    }
    return millionths;
}

SlowerLayer slowerLayerOf(const Given& given, const NetworkOptions& options) {
    const std::size_t equals = given.value.rfind('=');
    if (equals == std::string::npos) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no NAME=PERCENT");
    }
    const std::string layer = given.value.substr(0, equals);
    const std::vector<std::string> layers = makeNetwork(options.layers).zebLayerNames;
    if (std::find(layers.begin(), layers.end(), layer) == layers.end()) {
        throw wrongUsage(given.name, "the network has no layer \"" + layer + "\"");
    }
    return {layer, millionthsOf({given.name, given.value.substr(equals + 1)}, maxSlower)};
}

// The options of a network, for an option that would change nothing in a log of another kind.
NetworkOptions& networkOf(CommandOptions& options, const Given& given) {
    if (!options.kind->takesNetworkOptions) {
        throw wrongUsage(given.name,
                         "is for a log of the kind " + std::string(sampleKinds[0].name) + " only");
    }
    return options.network;
}

using OptionRows = std::vector<command::OptionRow<CommandOptions>>;

// All options, in the order of the help and in which they take effect.
const OptionRows& optionRows() {
    static const std::string counts = "1 to " + std::to_string(maxCount);
    static const OptionRows rows = {
        {{"--kind", " KIND",
          "Kind of log, see below. Default " + std::string(sampleKinds[0].name) +
              "; the options that follow are for that kind.",
          command::namesOf(sampleKinds)},
         Takes::value,
         [](CommandOptions& options, const Given& given) { options.kind = kindOf(given); }},
        {{"--async", "", "Execute asynchronously, with queue waits."},
         Takes::nothing,
         [](CommandOptions& options, const Given& given) { networkOf(options, given).async = true; }},
        {{"--level", " LEVEL",
          "Profiling level: basic (1), detailed (2, default) or internal (1100). At level basic there is no "
          "data on layers.",
          command::namesOf(levels)},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).level = levelOf(given);
         }},
        {{"--executions", " N", "Executions of each graph, " + counts + ". Default 20."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).executions = countOf(given);
         }},
        {{"--layers", " N",
          "ZEB layers of each graph, " + counts +
              ". Default: the 32 that the network has. Further ones have about four ORU layers each."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).layers = countOf(given);
         }},
        {{"--graphs", " N", "Graphs, " + counts + ". Default 1."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).graphs = countOf(given);
         }},
        {{"--seed", " N", "Add random variation to the times. Without it nothing is random."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).seed = integerOf(given, 0, std::numeric_limits<std::uint64_t>::max());
         }},
        {{"--drift", " PERCENT",
          "Multiply all times of the log by one random factor with this standard deviation, 0 to " +
              std::to_string(maxDrift) + "."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).driftMillionths = millionthsOf(given, maxDrift);
         },
         {},
         {.needs = "--seed"}},
        {{"--drift-seed", " N",
          "Draw that factor from N and not from the --seed: logs that share it have drifted alike."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).driftSeed =
                 integerOf(given, 0, std::numeric_limits<std::uint64_t>::max());
         },
         {},
         {.needs = "--drift"}},
        {{"--slower", " PERCENT",
          "Make all times longer by 0 to " + std::to_string(maxSlower) + " per cent."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).slowerMillionths = millionthsOf(given, maxSlower);
         }},
        {{"--slower-layer", " NAME=PERCENT",
          "Make the times of the ZEB layer NAME longer by 0 to " + std::to_string(maxSlower) + " per cent."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             auto& network = networkOf(options, given);
             network.slowerLayer = slowerLayerOf(given, network);
         }},
        {{"--epoch-us", " N",
          "When the log was created, in microseconds since 1970. Default: October 1, 2026, 9:00 UTC."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).epochUs =
                 integerOf(given, 0, std::numeric_limits<std::uint64_t>::max());
         }},
        {{"--generator-version", " TEXT", "Version of the program that wrote the log."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).generatorVersion = given.value;
         }},
        {{"--backend-version", " TEXT", "Version of the backend."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).backendVersion = given.value;
         }},
        {{"--slowing", " PERCENT",
          "Make executions slower over the run, the last one by 0 to " + std::to_string(maxSlowing) +
              " per cent."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).slowingMillionths = millionthsOf(given, maxSlowing);
         }},
        {{"--noise", " PERCENT",
          "Give each execution a random factor with this standard deviation, 0 to " +
              std::to_string(maxDrift) + ", in place of the fixed rhythm."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).noiseMillionths = millionthsOf(given, maxDrift);
         },
         {},
         {.needs = "--seed"}},
        {{"--wander", " PERCENT",
          "Have an execution keep that much of the noise of the one before it, 0 to " +
              std::to_string(maxWander) + "."},
         Takes::value,
         [](CommandOptions& options, const Given& given) {
             networkOf(options, given).wanderMillionths = millionthsOf(given, maxWander);
         }},
    };
    return rows;
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
        case ExitCode::badLog:
        case ExitCode::badPlugin:
        case ExitCode::badReport:
        case ExitCode::slower:
        case ExitCode::incomparable:
        case ExitCode::closedPipe:
            break;
    }
    return {};
}

CommandOptions parseCommandLine(int argc, const char* const* argv) {
    const CommandLine line = parsedBy(optionRows(), command::OwnWord::one, argc, argv);
    const auto more = command::filesAmong(line.remaining(), command::optionNames(optionRows()));
    if (!more.empty()) {
        throw wrongUsage(more.front(), "a word too many, there is one FILE");
    }
    CommandOptions options;
    options.action = line.action();
    if (options.action != command::Action::work) {  // a help that is shown whatever the values hold
        return options;
    }
    applyGiven(line, optionRows(), options);
    if (!line.word() || line.word()->empty()) {
        throw wrongUsage("no FILE given");
    }
    options.file = *line.word();
    return options;
}

console::CommandManual commandManual() {
    console::CommandManual manual{
        .name = std::string(programName),
        .summary = "Writes a profiling log as a runtime would write it.",
        .usages = {"[options] FILE"},
        .options = manualOf(optionRows()),
        .tables = {{"Kinds of log", {}}},
        .paragraphs =
            {"The same options give the same bytes, on every machine. FILE may be /dev/stdout. What "
             "FILE held before is lost."},
        .exitCodes = {"Exit codes", console::rowsOf(meaningOf)},
        .examples = {{"", "write-sample-log sample.zlog"},
                     {"", "write-sample-log --async --level internal --executions 100 sample.zlog"},
                     {"", "write-sample-log --kind methods methods.zlog"}}};
    for (const SampleKind& kind : sampleKinds) {
        manual.tables[0].rows.push_back({std::string(kind.name), std::string(kind.help)});
    }
    return manual;
}

}  // namespace zeb::samplelog
