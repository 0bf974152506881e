#include "logging/Logger.h"

#include <chrono>
#include <mutex>
#include <ratio>
#include <string>
#include <unordered_map>
#include <utility>

namespace zeb::profiling {

std::uint64_t loggerHandle = 0;

namespace {

struct LoggerTable {
    std::mutex mutex;
    std::unordered_map<std::uint64_t, std::shared_ptr<const Logger>> loggers;
};

LoggerTable loggerTable;

std::uint64_t wallClockNs() {
    using Ticks = std::chrono::duration<std::uint64_t, std::ratio<1, 10'000'000>>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Ticks>(sinceEpoch).count() * 100;
}

void pass(const Logger& logger, std::int32_t level, const char* format, va_list arguments) {
    if (logger.logCallback == nullptr || level > logger.maxLevel) {
        return;
    }
    const std::string ownFormat = format;
    logger.logCallback(ownFormat.c_str(), level, wallClockNs() - logger.startTimeNs, arguments);
}

// An argument list can only be made by a variadic function.
void passWithoutArguments(const Logger& logger, std::int32_t level, const char* format, ...) {
    va_list none;
    va_start(none, format);
    pass(logger, level, format, none);
    va_end(none);
}

}  // namespace

void setLogger(std::uint64_t handle, std::shared_ptr<const Logger> logger) {
    const std::lock_guard lock(loggerTable.mutex);
    if (logger) {
        loggerTable.loggers[handle] = std::move(logger);
    } else {
        loggerTable.loggers.erase(handle);
    }
}

std::shared_ptr<const Logger> getLogger(std::uint64_t handle) {
    const std::lock_guard lock(loggerTable.mutex);
    const auto entry = loggerTable.loggers.find(handle);
    return entry == loggerTable.loggers.end() ? nullptr : entry->second;
}

std::shared_ptr<const Logger> loggerFor(std::int32_t level) {
    auto logger = getLogger(loggerHandle);
    return logger && logger->maxLevel >= level ? logger : nullptr;
}

void logMessage(std::int32_t level, const char* text) {
    if (const auto logger = loggerFor(level)) {
        passWithoutArguments(*logger, level, text);
    }
}

void logMessage(const Logger& logger, std::int32_t level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pass(logger, level, format, arguments);
    va_end(arguments);
}

}  // namespace zeb::profiling
