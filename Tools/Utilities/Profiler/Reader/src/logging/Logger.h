#pragma once

#include <cstdarg>
#include <cstdint>
#include <memory>

/// Diagnostics: a global table of loggers, and the call that passes a message to one. The library itself puts
/// no logger into the table, so it is silent until an embedding does.
namespace zeb::profiling {

/// Levels of messages; a higher number is more talkative.
enum LogLevel : std::int32_t {
    ZEB_LOG_LEVEL_ERROR = 1,
    ZEB_LOG_LEVEL_WARN = 2,
    ZEB_LOG_LEVEL_INFO = 3,
    ZEB_LOG_LEVEL_VERBOSE = 4,
    ZEB_LOG_LEVEL_DEBUG = 5,
};

/// Receives a message that passed the level test: its printf-style format, its level, the time in ns since
/// the logger's start, and the arguments of the format. It does the formatting and the output. It may be
/// called from any thread that logs.
using LogCallback = void (*)(const char* format, std::int32_t level, std::uint64_t timestamp,
                             va_list arguments);

struct Logger {
    LogCallback logCallback = nullptr;  ///< null: every message is dropped
    std::int32_t maxLevel = 0;          ///< highest level that this logger takes
    std::uint64_t startTimeNs = 0;      ///< from which message times are counted, ns since the Unix epoch
};

/// The handle under which the whole library looks its logger up. An embedding may set it before it has
/// anything read: it is read without a lock.
extern std::uint64_t loggerHandle;

/// Puts a logger into the table for an embedding, in place of one that was there; null takes it out.
void setLogger(std::uint64_t handle, std::shared_ptr<const Logger> logger);

/// @return the logger under `handle`, null when there is none. It stays valid for as long as it is held.
std::shared_ptr<const Logger> getLogger(std::uint64_t handle);

/// Passes a message to the library's logger, if there is one that takes it.
/// @param text becomes the format, so a percent sign in it has to be doubled
void logMessage(std::int32_t level, const char* text);

/// @return the library's logger, null when there is none that takes messages of the level. A message with
///         arguments is logged behind a look at it, so that they are worked out for somebody alone.
std::shared_ptr<const Logger> loggerFor(std::int32_t level);

/// Passes a message to the logger's callback, unless its level is too high for the logger.
[[gnu::format(printf, 3, 4)]] void logMessage(const Logger& logger, std::int32_t level, const char* format,
                                              ...);

}  // namespace zeb::profiling
