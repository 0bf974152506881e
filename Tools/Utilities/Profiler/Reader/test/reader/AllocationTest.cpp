#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>

#include "MethodsLog.h"
#include "NetworkLog.h"
#include "log/ChunkReader.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
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
                  va_list /*arguments*/) {
    toldNoMemory = toldNoMemory || std::strcmp(format, "Unable to allocate memory: %s") == 0;
}

enum class Ending : std::uint8_t { good, falseLoad, falseReport, badAlloc };

struct Run {
    Ending ending;
    bool struck;
    std::uint64_t console;
    std::string csv;
    std::size_t leaked;
};

/// A log in a directory of its own, which is the working directory meanwhile: objects are saved there.
class LogPlace {
public:
    explicit LogPlace(const std::string& log) : previous_(std::filesystem::current_path()) {
        directory_.write("log", log);
        std::filesystem::current_path(directory_.directory());
        setLogger(loggerHandle, std::make_shared<Logger>(Logger{noteNoMemory, ZEB_LOG_LEVEL_DEBUG, 0}));
    }
    ~LogPlace() {
        setLogger(loggerHandle, nullptr);
        std::filesystem::current_path(previous_);
    }
    LogPlace(const LogPlace&) = delete;
    LogPlace& operator=(const LogPlace&) = delete;

    template <typename Reader>
    Run read(std::size_t failingAllocation, FaultKind kind) {
        const std::string log = "log";
        const std::string csv = "csv";
        Run run{};
        toldNoMemory = false;
        const std::size_t before = test::outstandingAllocations();
        {
            const SummedOutput output;
            const AllocationFault fault(failingAllocation, kind);
            run.ending = readTo<Reader>(log, csv);
            run.struck = fault.hasStruck();
            run.console = output.sum();
        }
        run.leaked = test::outstandingAllocations() - before;
        run.csv = test::fileText(csv);
        removeFilesBut(log);
        return run;
    }

private:
    template <typename Reader>
    static Ending readTo(const std::string& log, const std::string& csv) {
        try {
            Reader reader(log, VisibilityLevel{127});
            if (!reader.loadLog(true)) {
                return Ending::falseLoad;
            }
            return reader.generateReports(csv) ? Ending::good : Ending::falseReport;
        } catch (const std::bad_alloc&) {
            return Ending::badAlloc;
        }
    }

    void removeFilesBut(const std::string& kept) const {
        for (const auto& entry : std::filesystem::directory_iterator(directory_.directory())) {
            if (entry.path().filename() != kept) {
                std::filesystem::remove(entry.path());
            }
        }
    }

    test::TempDir directory_;
    std::filesystem::path previous_;
};

std::string written(const std::function<void(std::ostream&)>& write) {
    std::ostringstream out;
    write(out);
    return out.str();
}

const std::string networkLog = written([](std::ostream& out) {
    samplelog::writeNetworkLog(out, {.async = true, .executions = 2, .layers = 3});
});
const std::string methodsLog = written(samplelog::writeMethodsLog);

std::size_t chunksIn(const std::string& log) {
    std::size_t chunks = 0;
    for (ChunkReader reader(log); reader.nextLength(); ++chunks) {
        static_cast<void>(reader.readBody());
    }
    return chunks;
}

// Fails each allocation of a run in turn.
template <typename Reader>
void failEach(const std::string& log, FaultKind kind) {
    LogPlace place(log);
    place.read<Reader>(0, kind);  // what is made once for the process is made here
    const Run good = place.read<Reader>(0, kind);
    ASSERT_EQ(good.ending, Ending::good);
    std::size_t falseLoads = 0;
    for (std::size_t number = 1;; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const Run run = place.read<Reader>(number, kind);
        EXPECT_EQ(run.leaked, 0U);
        if (run.ending == Ending::good) {
            EXPECT_EQ(run.console, good.console) << "nothing is left out without a word";
            EXPECT_EQ(run.csv, good.csv);
        } else if (run.ending == Ending::falseLoad) {
            EXPECT_TRUE(toldNoMemory);
            ++falseLoads;
        } else {
            EXPECT_EQ(run.ending, Ending::badAlloc);
        }
        if (!run.struck || testing::Test::HasFailure()) {
            break;
        }
    }
    if (kind == FaultKind::single) {  // the buffer of a chunk is two allocations
        EXPECT_EQ(falseLoads, 2 * chunksIn("log")) << "only a chunk without memory is a false load";
    }
}

TEST(Allocation, FailsOnceWithoutALossOrALeak) {
    failEach<ZebProfileLogReaderMURL>(networkLog, FaultKind::single);
    failEach<ZebProfileLogReader>(networkLog, FaultKind::single);
    failEach<ZebProfileLogReader>(methodsLog, FaultKind::single);
}

TEST(Allocation, FailsForGoodWithoutALossOrALeak) {
    failEach<ZebProfileLogReaderMURL>(networkLog, FaultKind::lasting);
    failEach<ZebProfileLogReader>(methodsLog, FaultKind::lasting);
}

}  // namespace

}  // namespace zeb::profiling
