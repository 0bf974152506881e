#include <gtest/gtest.h>

#include <chrono>

#include "logging/Logger.h"
#include "support/TestLog.h"

namespace zeb::profiling {
namespace {

TEST(Logger, TakesMessagesUpToItsLevel) {
    const test::CaughtLog log(ZEB_LOG_LEVEL_WARN);
    for (std::int32_t level = ZEB_LOG_LEVEL_ERROR; level <= ZEB_LOG_LEVEL_DEBUG; ++level) {
        logMessage(level, "a message");
        logMessage(*getLogger(loggerHandle), level, "number %d of %s", 7, "nine");
        if (const auto logger = loggerFor(level)) {
            logMessage(*logger, level, "half of %.1f", 2.5);
        }
        EXPECT_EQ(loggerFor(level) != nullptr, level <= ZEB_LOG_LEVEL_WARN)
            << "nothing is worked out for nobody";
    }
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"1 a message", "1 number 7 of nine", "1 half of 2.5",
                                                     "2 a message", "2 number 7 of nine", "2 half of 2.5"}));
}

TEST(Logger, WithoutEntryOrCallbackDropsMessages) {
    EXPECT_EQ(getLogger(loggerHandle), nullptr);
    setLogger(loggerHandle, std::make_shared<Logger>(Logger{nullptr, ZEB_LOG_LEVEL_DEBUG, 0}));
    logMessage(ZEB_LOG_LEVEL_ERROR, "nobody hears this");
    logMessage(*loggerFor(ZEB_LOG_LEVEL_ERROR), ZEB_LOG_LEVEL_ERROR, "%s", "nobody hears this");
    setLogger(loggerHandle, nullptr);
    logMessage(ZEB_LOG_LEVEL_ERROR, "nor this");
    const auto other = std::make_shared<const Logger>();
    setLogger(loggerHandle + 7, other);
    EXPECT_EQ(getLogger(loggerHandle + 7), other);
    EXPECT_EQ(getLogger(loggerHandle), nullptr);
    setLogger(loggerHandle + 7, nullptr);
    EXPECT_EQ(other.use_count(), 1);
}

TEST(Logger, IsLookedUpUnderTheHandleOfTheEmbedding) {
    const auto own = std::make_shared<const Logger>(Logger{nullptr, ZEB_LOG_LEVEL_ERROR, 0});
    setLogger(7, own);
    EXPECT_EQ(loggerFor(ZEB_LOG_LEVEL_ERROR), nullptr);
    loggerHandle = 7;
    EXPECT_EQ(loggerFor(ZEB_LOG_LEVEL_ERROR), own);
    loggerHandle = 0;
    setLogger(7, nullptr);
}

std::uint64_t lastTimestamp = 0;

TEST(Logger, CountsTimeFromItsStart) {
    const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    const auto oneHourAgo = static_cast<std::uint64_t>((now - std::chrono::hours(1)).count());
    const LogCallback keepTimestamp = [](const char*, std::int32_t, std::uint64_t timestamp, va_list) {
        lastTimestamp = timestamp;
    };
    logMessage(Logger{keepTimestamp, ZEB_LOG_LEVEL_ERROR, oneHourAgo}, ZEB_LOG_LEVEL_ERROR, "an hour later");
    EXPECT_GE(lastTimestamp, 3600ULL * 1000 * 1000 * 1000 - 100);
    EXPECT_LT(lastTimestamp, 3700ULL * 1000 * 1000 * 1000);
}

}  // namespace
}  // namespace zeb::profiling
