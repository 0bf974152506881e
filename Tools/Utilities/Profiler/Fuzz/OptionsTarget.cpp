// The bytes are a command line: its arguments with a NUL between them.

#include <cstdint>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "command/Failure.h"
#include "commandline/AppArgManagerImpl.h"
#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "text/NearestName.h"
#include "viewer/ViewerArgs.h"
#include "viewer/ViewerOptions.h"

namespace {

using namespace zeb;
using fuzz::require;
using Arguments = std::vector<std::string>;

Arguments splitArguments(const std::string& text) {
    Arguments arguments;
    std::istringstream in(text);
    for (std::string argument; std::getline(in, argument, '\0');) {
        arguments.push_back(argument);
    }
    return arguments;
}

/// Takes what is written to standard error, for as long as it lives.
class CaughtErrors {
public:
    CaughtErrors() : previous_(std::cerr.rdbuf(text_.rdbuf())) {}
    ~CaughtErrors() { std::cerr.rdbuf(previous_); }
    CaughtErrors(const CaughtErrors&) = delete;
    CaughtErrors& operator=(const CaughtErrors&) = delete;

    [[nodiscard]] std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* previous_;
};

// What the viewer makes of its own options: their values, or the line that refuses them.
struct ViewerOutcome {
    std::string refusal;
    std::string reader;
    std::string csv;
    std::string log;
    int level = 0;
    std::optional<std::string> objectDirectory;
    bool trustObjectNames = false;
    std::uint64_t maxMemory = 0;
    Arguments readerArguments;

    bool operator==(const ViewerOutcome&) const = default;
};

ViewerOutcome parseAsViewer(const Arguments& arguments) {
    std::vector<const char*> argv = {"zeb-profile-viewer"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    try {
        const viewer::ViewerOptions options =
            viewer::parseCommandLine(static_cast<int>(argv.size()), argv.data());
        return {.refusal = {},
                .reader = options.reader,
                .csv = options.csv,
                .log = options.log,
                .level = static_cast<int>(options.level),
                .objectDirectory = options.objectDirectory,
                .trustObjectNames = options.trustObjectNames,
                .maxMemory = options.maxMemory.bytes,
                .readerArguments = options.readerArguments};
    } catch (const command::Failure& failure) {
        require(failure.exitCode() == command::ExitCode::usage, "wrong options are wrong usage");
        ViewerOutcome refused;
        refused.refusal = failure.what();
        return refused;
    }
}

// The reader's own options.
std::tuple<bool, std::string> parseAsReader(viewer::ViewerArgs& args) {
    const CaughtErrors errors;
    profiling::ZebProfileLogReaderMURL reader("none.log", profiling::VisibilityLevel{127});
    const bool goesOn = reader.parseBackendArgs(args);
    return {goesOn, errors.text()};
}

void checkReaderOptions(const Arguments& arguments, bool isInFull) {
    viewer::ViewerArgs args(arguments);
    const auto [goesOn, errors] = parseAsReader(args);
    bool endsRun = false;
    for (const char* const name : {"--help", "--version", "--extra_help"}) {
        endsRun = endsRun || viewer::ViewerArgs(arguments).lookup(name).found;
    }
    require(goesOn == !endsRun, "help and version alone end the run");
    require(goesOn == errors.empty(), "a reader that does not go on says so");
    if (isInFull) {
        viewer::ViewerArgs again(arguments);
        require(parseAsReader(again) == std::tuple(goesOn, errors), "the same options give the same texts");
    }
    const auto leftover = args.firstLeftover();
    const Arguments asked(args.askedNames().begin(), args.askedNames().end());
    if (goesOn && leftover && leftover->isOption) {
        profiling::nearestName(leftover->name, asked);
        require(!viewer::ViewerArgs({leftover->name}).lookup("--internal").found,
                "an asked option is not left over");
    }
}

// A manager whose options are named by the first arguments, over the others.
void checkManager(const Arguments& arguments) {
    constexpr std::size_t maxOptions = 4;
    const std::size_t count = std::min(arguments.size(), maxOptions);
    commandline2::AppArgManagerImpl manager(arguments.size() % 2 == 0);
    std::size_t values = 0;
    bool flag = false;
    for (std::size_t index = 0; index < count; ++index) {
        const bool isRequired = index % 2 == 1;
        const auto takeValues = [&values](const commandline2::OptionValues& given) {
            values += given.size();
            return !given.empty();
        };
        if (index < 2) {
            manager.addValueOption(arguments[index], takeValues, arguments.back(), isRequired, false);
        } else {
            manager.addFlagOption(arguments[index], &flag, arguments.back(), isRequired, index == 3);
        }
    }
    viewer::ViewerArgs args({arguments.begin() + static_cast<std::ptrdiff_t>(count), arguments.end()});
    const CaughtErrors errors;
    const std::int32_t code = manager.parse(args);
    require((code == commandline2::parseGood) == errors.text().empty(), "good options are silent");
    for (std::size_t index = 1; code == commandline2::parseGood && index < count; index += 2) {
        const bool isFirstOfName =
            std::find(arguments.begin(), arguments.end(), arguments[index]) - arguments.begin() ==
            static_cast<std::ptrdiff_t>(index);
        require(!isFirstOfName || manager.isOptionSet(arguments[index]),
                "a good command line has what is required");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Arguments arguments = splitArguments({data, data + size});
    const ViewerOutcome outcome = parseAsViewer(arguments);
    const bool isInFull = fuzz::isCheckedInFull({data, size});
    require(!isInFull || outcome == parseAsViewer(arguments), "the same options give the same result");
    checkReaderOptions(outcome.readerArguments, isInFull);
    checkReaderOptions(arguments, isInFull);
    checkManager(arguments);
    return 0;
}
