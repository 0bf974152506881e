// The header of a log and its text.

#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): setenv

#include <ctime>
#include <limits>
#include <optional>

#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::Header;
using Loaded = test::Loaded<ZebProfileLogReader>;

constexpr std::uint64_t second = 1'000'000;

// Runs in a time zone of its own.
class LogHeaderTest : public testing::Test {
public:
    LogHeaderTest() {
        if (const char* const zone = getenv("TZ")) {
            zone_ = zone;
        }
        setZone("UTC0");
    }
    ~LogHeaderTest() override {
        if (zone_) {
            setZone(*zone_);
        } else {
            unsetenv("TZ");
            tzset();
        }
    }
    LogHeaderTest(const LogHeaderTest&) = delete;
    LogHeaderTest& operator=(const LogHeaderTest&) = delete;

protected:
    static void setZone(const std::string& zone) {
        setenv("TZ", zone.c_str(), 1);
        tzset();
    }

    // The header's text behind the line of the log's path.
    static std::string textOf(const Header& header) {
        Loaded loaded(samplelog::encodeLog(header, {}));
        const std::string text = loaded.reader.printHeader();
        const std::string first = "Input Log File Location: " + loaded.reader.logFilePath() + "\n";
        EXPECT_EQ(text.substr(0, first.size()), text.empty() ? "" : first);
        return text.empty() ? text : text.substr(first.size());
    }

private:
    std::optional<std::string> zone_;
};

const std::string created1970 = "Log File Created: Thu Jan  1 00:00:00 1970\n";
const std::string noTimes = "Time Scale: 0\nEpoch Timestamp: 0 Steady Clock Timestamp: 0\n";
const std::string viewer = "Generated using: \nzeb-profile-viewer: v2.51.0.260929181845\n";

TEST_F(LogHeaderTest, ShowsTheNamesThatAreThere) {
    const struct {
        std::optional<std::string> name;
        std::optional<std::string> version;
        std::optional<std::string> backend;
        std::string lines;
    } cases[] = {
        {{}, {}, {}, ""},
        {"", "", "", ""},
        {"tool", "1.2", {}, "tool: 1.2\n"},
        {"tool", {}, {}, ""},
        {"tool", "", "murl 3", "Backend: murl 3\n"},
        {{}, "1.2", {}, ""},
        {"tool", "1.2", "murl 3", "tool: 1.2\nBackend: murl 3\n"},
        {std::string("to\0l", 4), "1\n2", "%s", std::string("to\0l", 4) + ": 1\n2\nBackend: %s\n"},
    };
    const std::string always = created1970 + noTimes + viewer;
    for (const auto& [name, version, backend, lines] : cases) {
        Header header;
        header.generatorName = name;
        header.generatorVersion = version;
        header.backendInfo = backend;
        const std::string text = textOf(header);
        EXPECT_EQ(text.substr(0, always.size()), always);
        EXPECT_EQ(text.substr(always.size()), lines);
    }
}

TEST_F(LogHeaderTest, ShowsTheTimes) {
    const struct {
        std::uint64_t epoch;
        const char* created;
    } cases[] = {
        {1, "Thu Jan  1 00:00:00 1970"},
        {1'699'999'999'999'999, "Tue Nov 14 22:13:19 2023"},
        {1'700'000'000'000'000, "Tue Nov 14 22:13:20 2023"},
        {253'402'300'799 * second, "Fri Dec 31 23:59:59 9999"},
    };
    for (const auto& [epoch, created] : cases) {
        Header header;
        header.epochTimestamp = epoch;
        header.steadyClockTimestamp = std::numeric_limits<std::uint64_t>::max();
        EXPECT_EQ(textOf(header), "Log File Created: " + std::string(created) +
                                      "\nTime Scale: 0\nEpoch Timestamp: " + std::to_string(epoch) +
                                      " Steady Clock Timestamp: 18446744073709551615\n" + viewer);
    }
}

TEST_F(LogHeaderTest, HasNoTextForAYearOfFiveDigits) {
    for (const std::uint64_t epoch : {253'402'300'800 * second, std::numeric_limits<std::uint64_t>::max()}) {
        Header header;
        header.epochTimestamp = epoch;
        EXPECT_EQ(textOf(header), "") << epoch;
    }
}

TEST_F(LogHeaderTest, ShowsLocalTime) {
    setZone("XYZ-3:30");
    EXPECT_EQ(textOf({}).substr(0, created1970.size()), "Log File Created: Thu Jan  1 03:30:00 1970\n");
}

TEST_F(LogHeaderTest, ShowsTheTimeScaleAsStreamsShowFloats) {
    const struct {
        float scale;
        const char* text;
    } cases[] = {
        {1.0F, "1"}, {0.1F, "0.1"}, {52.0833333F, "52.0833"}, {1234567.0F, "1.23457e+06"}, {-0.5F, "-0.5"}};
    for (const auto& [scale, text] : cases) {
        Header header;
        header.timeScale = scale;
        EXPECT_EQ(
            test::behindLines(textOf(header), 1),
            "Time Scale: " + std::string(text) + "\nEpoch Timestamp: 0 Steady Clock Timestamp: 0\n" + viewer);
    }
}

Bytes chunkOf(std::optional<std::string> name) {
    if (!name) {
        return samplelog::encodeLog(std::nullopt, {});
    }
    Header header;
    header.generatorName = std::move(name);
    header.generatorVersion = "1";
    return samplelog::encodeLog(header, {});
}

TEST_F(LogHeaderTest, IsTheFirstOneOfTheLog) {
    const struct {
        std::vector<std::optional<std::string>> chunks;
        std::optional<std::string> captured;
    } cases[] = {
        {{}, {}},
        {{std::nullopt, std::nullopt}, {}},
        {{std::nullopt, "second"}, "second"},
        {{"first", "second"}, "first"},
        {{"first", std::nullopt}, "first"},
    };
    for (const auto& [chunks, captured] : cases) {
        Bytes bytes;
        for (const auto& name : chunks) {
            const Bytes chunk = chunkOf(name);
            bytes.insert(bytes.end(), chunk.begin(), chunk.end());
        }
        Loaded loaded(bytes);
        EXPECT_TRUE(loaded.isLoaded);
        const test::CaughtLog log;
        EXPECT_EQ(loaded.reader.printHeader().empty(), !captured);
        EXPECT_EQ(log.has("5 Header details unavailable."), !captured);
        EXPECT_EQ(loaded.reader.header().generatorName, captured.value_or(""));
    }
}

TEST_F(LogHeaderTest, IsNotTakenFromADamagedChunk) {
    Bytes bytes = chunkOf("tool");
    bytes.pop_back();
    Loaded loaded(bytes);
    EXPECT_FALSE(loaded.isLoaded);
    EXPECT_EQ(loaded.reader.printHeader(), "");
    EXPECT_EQ(ZebProfileLogReader("nothing", VisibilityLevel{1}).printHeader(), "");
}

TEST_F(LogHeaderTest, KnowsTheAdapterUpdaterByItsExactName) {
    const struct {
        std::string name;
        bool isAdapterUpdater;
    } cases[] = {
        {"sorel-lora-adapter-bin-updater", true},
        {"sorel-lora-adapter-bin-updater2", false},
        {"sorel-lora-adapter-bin-update", false},
        {"Sorel-lora-adapter-bin-updater", false},
        {std::string("sorel-lora-adapter-bin-updater\0", 31), false},
        {"", false},
    };
    for (const auto& [name, isAdapterUpdater] : cases) {
        EXPECT_EQ(Loaded(chunkOf(name)).reader.header().isAdapterUpdaterLog, isAdapterUpdater) << name;
    }
}

}  // namespace
}  // namespace zeb::profiling
