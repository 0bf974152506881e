#include "export/RunIds.h"

#include <cerrno>
#include <charconv>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "analysis/RunId.h"
#include "command/Failure.h"

namespace zeb::exports {

namespace fs = std::filesystem;
using command::ExitCode;
using command::Failure;

bool RunIds::add(std::string_view runId) {
    return ids_.insert(idOf(runId)).second;
}

bool RunIds::has(std::string_view runId) const {
    return ids_.contains(idOf(runId));
}

void RunIds::addBatchesIn(const fs::path& directory) {
    std::error_code error;
    for (fs::directory_iterator each(directory, error), end; !error && each != end; each.increment(error)) {
        const fs::path table = each->path() / "runs.csv";
        std::error_code none;
        if (!each->path().filename().native().starts_with('.') && fs::is_regular_file(table, none)) {
            addTable(table);
        }
    }
    if (error && error != std::errc::no_such_file_or_directory) {
        throw Failure(ExitCode::badOutput, directory.native(),
                      "the batches can't be read: " + error.message());
    }
}

// All that is looked for is the first value of each record; a record ends at a line feed outside of quotes.
void RunIds::addTable(const fs::path& table) {
    std::ifstream file(table, std::ios::binary);
    bool isInQuotes = false;
    bool isFirst = true;
    std::string line;
    while (std::getline(file, line)) {
        if (!isInQuotes && !std::exchange(isFirst, false)) {
            const std::string_view id = std::string_view(line).substr(0, line.find(','));
            if (id.size() > 2 && analysis::isRunId(id.substr(1, id.size() - 2))) {
                add(id.substr(1, id.size() - 2));
            }
        }
        for (const char character : line) {
            isInQuotes ^= character == '"';
        }
    }
    if (!file.eof()) {
        throw Failure(ExitCode::badOutput, table.native(), "it can't be read: " + command::errorText(errno));
    }
}

RunIds::Id RunIds::idOf(std::string_view runId) {
    constexpr int hexadecimal = 16;
    Id id{};
    const char* const middle = runId.data() + runId.size() / 2;
    std::from_chars(runId.data(), middle, id[0], hexadecimal);
    std::from_chars(middle, runId.data() + runId.size(), id[1], hexadecimal);
    return id;
}

}  // namespace zeb::exports
