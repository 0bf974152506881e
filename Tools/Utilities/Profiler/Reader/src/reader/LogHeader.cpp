// The header of a log: captured once, and shown as the head of the reports.

#include <array>
#include <ctime>
#include <string_view>

#include "log/LogAccess.h"
#include "logging/Logger.h"
#include "reader/TextStream.h"
#include "reader/ZebProfileLogReader.h"
#include "zeb/profiling/Version.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view adapterUpdaterName = "sorel-lora-adapter-bin-updater";
constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
constexpr int lastYearOfAsctime = 9999;  // four digits are all that its buffer has room for

std::string ownText(const flatbuffers::String* text) {
    return text == nullptr ? std::string() : std::string(storedText(text));
}

// Writes the line of the log's creation time, or none when the clock has no local time for it.
// Gives false when the local time has no text.
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

void ZebProfileLogReader::captureHeader() {
    if (headerSaved_) {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "Header details have been saved already.");
        return;
    }
    const schema::LogHeader* const header = logWalker_.header();
    if (header == nullptr) {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "hdr is nullptr");
        return;
    }
    header_.epochTimestamp = header->epochTimestamp();
    header_.steadyClockTimestamp = header->steadyClockTimestamp();
    header_.timeScale = header->timeScale();
    header_.generatorVersion = ownText(header->generatorVersion());
    header_.generatorName = ownText(header->generatorName());
    header_.isAdapterUpdaterLog = header_.generatorName == adapterUpdaterName;
    header_.backendInfo = ownText(header->backendInfo());
    headerSaved_ = true;
}

std::string ZebProfileLogReader::printHeader() {
    if (!headerSaved_) {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "Header details unavailable.");
        return {};
    }
    TextStream out;
    out << "Input Log File Location: " << logFilePath_ << '\n';
    if (!printCreationTime(out, header_.epochTimestamp)) {
        return {};
    }
    out << "Time Scale: " << header_.timeScale << '\n'
        << "Epoch Timestamp: " << header_.epochTimestamp
        << " Steady Clock Timestamp: " << header_.steadyClockTimestamp << '\n'
        << "Generated using: \n"
        << "zeb-profile-viewer: " << versionText << '\n';
    if (!header_.generatorName.empty() && !header_.generatorVersion.empty()) {
        out << header_.generatorName << ": " << header_.generatorVersion << '\n';
    }
    if (!header_.backendInfo.empty()) {
        out << "Backend: " << header_.backendInfo << '\n';
    }
    return out.str();
}

}  // namespace zeb::profiling
