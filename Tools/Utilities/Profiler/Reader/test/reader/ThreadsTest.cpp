#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <streambuf>
#include <string>
#include <thread>
#include <vector>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/CommandLine.h"
#include "support/TestLog.h"

namespace zeb::profiling {

namespace {

/// Takes the place of standard output and drops what is written, from any thread.
class DroppedOutput final : public std::streambuf {
public:
    DroppedOutput() : replaced_(std::cout.rdbuf(this)) {}
    ~DroppedOutput() override { std::cout.rdbuf(replaced_); }
    DroppedOutput(const DroppedOutput&) = delete;
    DroppedOutput& operator=(const DroppedOutput&) = delete;

protected:
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
    std::streamsize xsputn(const char* /*text*/, std::streamsize size) override { return size; }

private:
    std::streambuf* replaced_;
};

std::atomic<std::uint64_t> linesLogged{0};

void countLine(const char* /*format*/, std::int32_t /*level*/, std::uint64_t /*timestamp*/,
               va_list /*arguments*/) {
    ++linesLogged;
}

std::string writtenTo(const std::string& path, const std::function<void(std::ostream&)>& write) {
    std::ofstream out(path, std::ios::binary);
    write(out);
    return path;
}

std::string csvOf(IZebPluginLogReader& reader, const std::string& csvPath) {
    test::CommandLine args(test::CommandLine::Given{{"--internal", {}}});
    const bool isGood =
        reader.parseBackendArgs(args) && reader.loadLog(false) && reader.generateReports(csvPath);
    return isGood ? test::fileText(csvPath) : "failed";
}

TEST(Threads, HaveAReaderEach) {
    constexpr int threadCount = 8;
    constexpr int runsEach = 10;
    const test::TempDir directory;
    const std::string network = writtenTo(directory.path("network"), [](std::ostream& out) {
        samplelog::writeNetworkLog(out, {.async = true, .executions = 3, .layers = 5});
    });
    const std::string methods = writtenTo(directory.path("methods"), samplelog::writeMethodsLog);
    const DroppedOutput output;
    const auto logger = std::make_shared<const Logger>(Logger{countLine, ZEB_LOG_LEVEL_DEBUG, 0});
    setLogger(loggerHandle, logger);

    const auto report = [&](const std::string& csvPath) {
        ZebProfileLogReaderMURL backend(network, VisibilityLevel{127});
        ZebProfileLogReader generic(methods, VisibilityLevel{127});
        return csvOf(backend, csvPath + "-backend") + csvOf(generic, csvPath + "-generic");
    };
    const std::string expected = report(directory.path("alone"));
    const std::uint64_t linesOfOne = linesLogged;
    std::atomic<int> others{0};
    const auto readAgainAndAgain = [&](int thread) {
        for (int run = 0; run < runsEach; ++run) {
            const std::string name = std::to_string(thread) + "-" + std::to_string(run);
            others += report(directory.path(name)) == expected ? 0 : 1;
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back(readAgainAndAgain, thread);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    setLogger(loggerHandle, nullptr);
    EXPECT_NE(expected.find("ORU Per-layer Stats:"), std::string::npos);
    EXPECT_EQ(others, 0) << "reports that differ";
    EXPECT_EQ(linesLogged, linesOfOne * (threadCount * runsEach + 1));
}

TEST(Threads, MayExchangeTheLoggerMeanwhile) {
    const auto logger = std::make_shared<const Logger>(Logger{countLine, ZEB_LOG_LEVEL_DEBUG, 0});
    const test::TempDir directory;
    const std::string methods = writtenTo(directory.path("methods"), samplelog::writeMethodsLog);
    const DroppedOutput output;
    std::atomic<bool> done{false};
    std::thread exchanging([&] {
        while (!done) {
            setLogger(loggerHandle, logger);
            setLogger(loggerHandle, nullptr);
        }
    });
    for (int run = 0; run < 20; ++run) {
        ZebProfileLogReader reader(methods, VisibilityLevel{127});
        EXPECT_TRUE(reader.loadLog(false));
    }
    done = true;
    exchanging.join();
    EXPECT_EQ(getLogger(loggerHandle), nullptr);
    EXPECT_EQ(logger.use_count(), 1) << "no call has kept it";
}

}  // namespace

}  // namespace zeb::profiling
