// The header of a log and its text.

#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): setenv

#include <ctime>
#include <limits>

#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::Header;
using Loaded = test::Loaded<ZebProfileLogReader>;

constexpr std::uint64_t second = 1'000'000;
const std::string noTimes = "Time Scale: 0\nEpoch Timestamp: 0 Steady Clock Timestamp: 0\n";
const std::string viewer = "Generated using: \nzeb-profile-viewer: v2.51.0.260929181845\n";

// The header's text behind the line of the log's path.
std::string textOf(const Header& header, const char* zone = "UTC0") {
    ::setenv("TZ", zone, 1);
    ::tzset();
    Loaded loaded(samplelog::encodeLog(header, {}));
    const std::string text = loaded.reader.printHeader();
    const std::string first = "Input Log File Location: " + loaded.reader.logFilePath() + "\n";
    EXPECT_EQ(text.substr(0, first.size()), text.empty() ? "" : first);
    return text.empty() ? text : text.substr(first.size());
}

TEST(LogHeader, ShowsTheNamesThatAreThere) {
    const struct {
        std::optional<std::string> name;
        std::optional<std::string> version;
        std::optional<std::string> backend;
        std::string lines;
    } cases[] = {
        {{}, {}, {}, ""},
        {"", "1.2", "", ""},
        {"tool", {}, {}, ""},
        {"tool", "", "murl 3", "Backend: murl 3\n"},
        {std::string("to\0l", 4), "1\n2", "%s", std::string("to\0l", 4) + ": 1\n2\nBackend: %s\n"},
    };
    for (const auto& [name, version, backend, lines] : cases) {
        const Header header{.generatorName = name, .generatorVersion = version, .backendInfo = backend};
        EXPECT_EQ(textOf(header), "Log File Created: Thu Jan  1 00:00:00 1970\n" + noTimes + viewer + lines);
    }
}

TEST(LogHeader, ShowsLocalTimesUpToTheYear9999AndFloatsLikeStreams) {
    const struct {
        std::uint64_t epoch;
        const char* zone;
        std::string created;
        float scale;
        std::string scaleText;
    } cases[] = {
        {0, "XYZ-3:30", "Thu Jan  1 03:30:00 1970", 1234567.0F, "1.23457e+06"},
        {1'699'999'999'999'999, "UTC0", "Tue Nov 14 22:13:19 2023", -0.5F, "-0.5"},
        {253'402'300'799 * second, "UTC0", "Fri Dec 31 23:59:59 9999", 52.0833333F, "52.0833"},
    };
    for (const auto& [epoch, zone, created, scale, scaleText] : cases) {
        const Header header{.timeScale = scale,
                            .epochTimestamp = epoch,
                            .steadyClockTimestamp = std::numeric_limits<std::uint64_t>::max(),
                            .generatorName = {},
                            .generatorVersion = {},
                            .backendInfo = {}};
        EXPECT_EQ(textOf(header, zone), "Log File Created: " + created + "\nTime Scale: " + scaleText +
                                            "\nEpoch Timestamp: " + std::to_string(epoch) +
                                            " Steady Clock Timestamp: 18446744073709551615\n" + viewer);
    }
    for (const std::uint64_t epoch : {253'402'300'800 * second, std::numeric_limits<std::uint64_t>::max()}) {
        Header header;
        header.epochTimestamp = epoch;
        EXPECT_EQ(textOf(header), "") << epoch;
    }
}

Bytes chunkOf(const std::optional<std::string>& name) {
    Header header;
    header.generatorName = name;
    return samplelog::encodeLog(name ? std::optional(header) : std::nullopt, {});
}

TEST(LogHeader, IsTheFirstOneOfTheLogThatIsWhole) {
    Bytes damaged = chunkOf("tool");
    damaged.pop_back();
    const struct {
        std::vector<Bytes> chunks;
        std::optional<std::string> captured;
    } cases[] = {
        {{}, {}},
        {{chunkOf({}), chunkOf({})}, {}},
        {{chunkOf({}), chunkOf("second")}, "second"},
        {{chunkOf("first"), chunkOf("second"), chunkOf({})}, "first"},
        {{damaged}, {}},
    };
    for (const auto& [chunks, captured] : cases) {
        Bytes bytes;
        for (const Bytes& chunk : chunks) {
            bytes.insert(bytes.end(), chunk.begin(), chunk.end());
        }
        Loaded loaded(bytes);
        const test::CaughtLog log;
        EXPECT_EQ(loaded.reader.printHeader().empty(), !captured);
        EXPECT_EQ(log.has("5 Header details unavailable."), !captured);
        EXPECT_EQ(loaded.reader.header().generatorName, captured.value_or(""));
    }
}

class Capturing final : public ZebProfileLogReader {
public:
    using ZebProfileLogReader::captureHeader;
    using ZebProfileLogReader::ZebProfileLogReader;
};

TEST(LogHeader, IsCapturedOnceAndOutOfAnOpenChunkAlone) {
    for (const bool hasOne : {true, false}) {
        test::Loaded<Capturing> loaded(chunkOf(hasOne ? std::optional<std::string>("tool") : std::nullopt));
        const test::CaughtLog log;
        loaded.reader.captureHeader();
        EXPECT_EQ(log.lines(), std::vector<std::string>{hasOne ? "5 Header details have been saved already."
                                                               : "5 hdr is nullptr"});
        EXPECT_EQ(loaded.reader.header().generatorName, hasOne ? "tool" : "");
    }
}

TEST(LogHeader, KnowsTheAdapterUpdaterByItsExactName) {
    const std::string exact = "sorel-lora-adapter-bin-updater";
    for (const std::string& name : {exact, exact + "2", exact.substr(1), exact + '\0', std::string()}) {
        EXPECT_EQ(Loaded(chunkOf(name)).reader.header().isAdapterUpdaterLog, name == exact) << name;
    }
}

}  // namespace
}  // namespace zeb::profiling
