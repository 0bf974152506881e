#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <streambuf>
#include <string>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/AllocationFault.h"
#include "support/TestLog.h"

namespace zeb::profiling {

namespace {

using test::AllocationFault;
using test::FaultKind;

/// Takes the place of standard output and allocates nothing.
class SummedOutput final : public std::streambuf {
public:
    SummedOutput() : replaced_(std::cout.rdbuf(this)) {}
    ~SummedOutput() override { std::cout.rdbuf(replaced_); }
    SummedOutput(const SummedOutput&) = delete;
    SummedOutput& operator=(const SummedOutput&) = delete;

    /// @return a number that tells texts apart
    [[nodiscard]] std::uint64_t sum() const { return sum_; }

protected:
    int_type overflow(int_type character) override {
        sum_ = sum_ * 1099511628211U + static_cast<std::uint64_t>(character) + 1;
        return traits_type::not_eof(character);
    }

private:
    std::uint64_t sum_ = 0;
    std::streambuf* replaced_;
};

bool toldNoMemory = false;

void noteNoMemory(const char* format, std::int32_t /*level*/, std::uint64_t /*timestamp*/,
                  va_list arguments) {
    std::array<char, 200> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    toldNoMemory = toldNoMemory || std::strcmp(text.data(), "Unable to allocate memory: std::bad_alloc") == 0;
}

struct Run {
    std::string ending;
    bool struck = false;
    std::uint64_t console = 0;
    std::string csv;
    std::size_t leaked = 0;
};

const char* endingOf(const std::function<const char*()>& work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    }
}

// Whatever has failed before, a reader can be asked for all that it has. No chunk is open any more.
const char* useAgain(IZebPluginLogReader& reader) {
    return endingOf([&reader] {
        EXPECT_FALSE(reader.readNextMessage());
        reader.printHeader();
        return reader.generateReports("again") ? "good" : "false report";
    });
}

template <typename Reader>
Run read(const std::string& log, std::size_t failingAllocation, FaultKind kind) {
    const test::TempDir directory;
    directory.write("log", log);
    std::filesystem::current_path(directory.directory());  // objects are saved there
    Run run;
    toldNoMemory = false;
    const std::size_t before = test::outstandingAllocations();
    {
        const SummedOutput output;
        std::optional<Reader> reader;
        {
            const AllocationFault fault(failingAllocation, kind);
            run.ending = endingOf([&reader] {
                reader.emplace("log", VisibilityLevel{127});
                if (!reader->loadLog(true)) {
                    return "false load";
                }
                return reader->generateReports("csv") ? "good" : "false report";
            });
            run.console = output.sum();
            if (reader) {
                useAgain(*reader);
            }
            run.struck = fault.hasStruck();
        }
        if (reader) {
            EXPECT_STREQ(useAgain(*reader), "good");
            EXPECT_TRUE(reader->loadLog(true));
            EXPECT_STREQ(useAgain(*reader), "good");
        }
    }
    run.leaked = test::outstandingAllocations() - before;
    run.csv = test::fileText("csv");
    return run;
}

std::string written(const std::function<void(std::ostream&)>& write) {
    std::ostringstream out;
    write(out);
    return out.str();
}

const std::string networkLog = written([](std::ostream& out) {
    samplelog::writeNetworkLog(out, {.async = true, .executions = 2, .layers = 3});
});
const std::string methodsLog = written(samplelog::writeMethodsLog);

// The report looks for the last of its names, for which the list of names has to grow.
std::string lookedUpNameLog() {
    std::vector<test::Event> events;
    for (int name = 0; name < 8; ++name) {
        events.push_back(test::event(std::to_string(name)));
    }
    events.push_back(test::event("Execute Profiling Level", test::number(1)));
    const samplelog::Bytes log = test::logOf({{test::message(test::MethodType::Execute, "net", 5, events)}});
    return {log.begin(), log.end()};
}

std::size_t chunksIn(const std::string& log) {
    std::size_t chunks = 0;
    std::uint32_t length = 0;
    for (std::size_t at = 0; at < log.size(); at += length + 4, ++chunks) {
        std::memcpy(&length, log.data() + at, sizeof(length));
    }
    return chunks;
}

// Fails each allocation of a run in turn.
template <typename Reader>
void failEach(const std::string& log, FaultKind kind) {
    setLogger(loggerHandle, std::make_shared<Logger>(Logger{noteNoMemory, ZEB_LOG_LEVEL_DEBUG, 0}));
    read<Reader>(log, 0, kind);  // what is made once for the process is made here
    const Run good = read<Reader>(log, 0, kind);
    ASSERT_EQ(good.ending, "good");
    std::size_t falseLoads = 0;
    for (std::size_t number = 1;; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const Run run = read<Reader>(log, number, kind);
        EXPECT_EQ(run.leaked, 0U);
        if (run.ending == "good") {
            EXPECT_EQ(run.console, good.console) << "nothing is left out without a word";
            EXPECT_EQ(run.csv, good.csv);
        } else if (run.ending == "false load") {
            EXPECT_TRUE(toldNoMemory);
            ++falseLoads;
        } else {
            EXPECT_EQ(run.ending, "bad_alloc");
        }
        if (!run.struck || testing::Test::HasFailure()) {
            break;
        }
    }
    setLogger(loggerHandle, nullptr);
    if (kind == FaultKind::single) {  // the buffer of a chunk is two allocations
        EXPECT_EQ(falseLoads, 2 * chunksIn(log)) << "only a chunk without memory is a false load";
    }
}

TEST(Allocation, FailsOnceWithoutALossOrALeak) {
    failEach<ZebProfileLogReaderMURL>(networkLog, FaultKind::single);
    failEach<ZebProfileLogReaderMURL>(lookedUpNameLog(), FaultKind::single);
    failEach<ZebProfileLogReader>(networkLog, FaultKind::single);
    failEach<ZebProfileLogReader>(methodsLog, FaultKind::single);
}

TEST(Allocation, FailsForGoodWithoutALossOrALeak) {
    failEach<ZebProfileLogReaderMURL>(networkLog, FaultKind::lasting);
    failEach<ZebProfileLogReader>(methodsLog, FaultKind::lasting);
}

}  // namespace

}  // namespace zeb::profiling
