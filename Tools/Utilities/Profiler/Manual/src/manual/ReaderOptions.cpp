#include "manual/ReaderOptions.h"

#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "viewer/NamedReaders.h"
#include "viewer/ViewerArgs.h"

namespace zeb::manual {

namespace {

constexpr std::string_view rowStart = "  [ ";
constexpr std::string_view rowEnd = " ]";

// The help of the reader with options of its own, which goes to standard error.
std::string readerHelp() {
    std::ostringstream help;
    std::streambuf* const previous = std::cerr.rdbuf(help.rdbuf());
    profiling::ZebProfileLogReaderMURL reader("none.log", profiling::VisibilityLevel{127});
    viewer::ViewerArgs args({"--help"});
    reader.parseBackendArgs(args);
    std::cerr.rdbuf(previous);
    return help.str();
}

}  // namespace

std::vector<console::ManualOption> readerOptions() {
    std::vector<console::ManualOption> options;
    std::istringstream help(readerHelp());
    for (std::string line; std::getline(help, line);) {
        const std::size_t end = line.find(rowEnd);
        if (line.starts_with(rowStart) && end != std::string::npos) {
            const std::string name = line.substr(rowStart.size(), end - rowStart.size());
            const std::size_t text = std::min(line.find_first_not_of(' ', end + rowEnd.size()), line.size());
            if (name != "--help" && name != "--version") {  // the viewer's
                options.push_back({name,
                                   "",
                                   line.substr(text) + " An option of the reader " +
                                       std::string(viewer::namedReaders[0].name) + ", to stand behind LOG.",
                                   {}});
            }
        }
    }
    return options;
}

}  // namespace zeb::manual
