#include "reports/HeaderText.h"

#include <array>
#include <ctime>

#include "logging/Logger.h"
#include "text/TextStream.h"
#include "zeb/profiling/Version.h"

namespace zeb::profiling {

namespace {

constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
constexpr int lastYearOfAsctime = 9999;  // four digits are all that its buffer has room for

// Writes the line of the log's creation time, or none when the clock has no local time for it.
// Returns false when the local time has no text.
bool printCreationTime(std::ostream& out, std::uint64_t epochTimestamp) {
    const auto seconds = static_cast<std::time_t>(epochTimestamp / microsecondsPerSecond);
    std::tm localTime{};
    if (localtime_r(&seconds, &localTime) == nullptr) {
        return true;
    }
    std::array<char, 26> text{};
    if (localTime.tm_year > lastYearOfAsctime - 1900 || asctime_r(&localTime, text.data()) == nullptr) {
        return false;
    }
    out << "Log File Created: " << text.data();
    return true;
}

}  // namespace

std::string headerText(const LogHeaderDetails& header, const std::string& logFilePath) {
    if (!header.headerSaved) {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "Header details unavailable.");
        return {};
    }
    TextStream out;
    out << "Input Log File Location: " << logFilePath << '\n';
    if (!printCreationTime(out, header.epochTimestamp)) {
        return {};
    }
    out << "Time Scale: " << header.timeScale << '\n'
        << "Epoch Timestamp: " << header.epochTimestamp
        << " Steady Clock Timestamp: " << header.steadyClockTimestamp << '\n'
        << "Generated using: \n"
        << "zeb-profile-viewer: " << versionText << '\n';
    if (!header.generatorName.empty() && !header.generatorVersion.empty()) {
        out << header.generatorName << ": " << header.generatorVersion << '\n';
    }
    if (!header.backendInfo.empty()) {
        out << "Backend: " << header.backendInfo << '\n';
    }
    return out.str();
}

}  // namespace zeb::profiling
