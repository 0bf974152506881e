// Whole reports of the sample logs, byte for byte. The expected texts stand in expected/, a file each. When
// one differs, the report is left in the test's build directory for a comparison.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/CommandLine.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

namespace fs = std::filesystem;
using samplelog::NetworkOptions;
using samplelog::ProfileLevel;
using test::fileText;

// Makes a directory the working directory for as long as it lives, and the local time UTC.
class Place {
public:
    explicit Place(const fs::path& directory) : before_(fs::current_path()) {
        fs::current_path(directory);
        ::setenv("TZ", "UTC", 1);
    }
    ~Place() { fs::current_path(before_); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

private:
    fs::path before_;
};

// The files of a directory with their bytes, a line each.
std::string listing(const fs::path& directory) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(directory)) {
        files[entry.path().filename().string()] = fileText(entry.path().string());
    }
    std::ostringstream text;
    for (const auto& [name, bytes] : files) {
        text << name << ':' << std::hex;
        for (const char byte : bytes) {
            text << ' ' << static_cast<int>(static_cast<unsigned char>(byte));
        }
        text << '\n';
    }
    return text.str();
}

void expectText(const std::string& name, const std::string& actual) {
    const std::string expected = fileText(std::string(ZEB_EXPECTED_REPORTS) + "/" + name);
    if (actual != expected) {
        std::ofstream(name, std::ios::binary) << actual;
        ADD_FAILURE() << name << " is not as expected; compare with " << fs::absolute(name);
    }
}

using WriteLog = std::function<void(std::ostream&)>;

class WholeReport : public testing::Test {
protected:
    // Loads the log as "run.zlog" of a working directory of its own.
    template <typename Reader>
    void report(Reader& reader, const WriteLog& write, bool saveObjects = false) {
        const Place place(directory.directory());
        {
            std::ofstream log("run.zlog", std::ios::binary);
            write(log);
        }
        const test::CaughtOutput output;
        EXPECT_TRUE(reader.loadLog(saveObjects));
        EXPECT_TRUE(reader.generateReports("run.csv"));
        fs::remove("run.zlog");
        console = output.text();
    }

    void expectReport(const std::string& name) const {
        expectText(name + ".console.txt", console);
        expectText(name + ".csv", fileText(directory.path("run.csv")));
        fs::remove(directory.path("run.csv"));
    }

    test::TempDir directory;
    std::string console;
};

TEST_F(WholeReport, OfNetworks) {
    const struct {
        const char* name;
        NetworkOptions options;
    } cases[] = {
        {"network", {}},
        {"network-internal-columns", {}},
        {"network-async", {.async = true}},
        {"network-basic", {.level = ProfileLevel::basic}},
        {"network-internal-level", {.level = ProfileLevel::internal, .layers = 8}},
        {"network-graphs", {.executions = 4, .layers = 6, .graphs = 3}},
    };
    for (const auto& network : cases) {
        ZebProfileLogReaderMURL reader("run.zlog", VisibilityLevel{127});
        test::CommandLine::Given given;
        if (network.name == std::string("network-internal-columns")) {
            given["--internal"] = {};
        }
        test::CommandLine arguments(given);
        EXPECT_TRUE(reader.parseBackendArgs(arguments));
        report(reader, [&network](std::ostream& out) { writeNetworkLog(out, network.options); });
        expectReport(network.name);
    }
}

TEST_F(WholeReport, OfAllMethods) {
    ZebProfileLogReader reader("run.zlog", VisibilityLevel{5});
    report(reader, samplelog::writeMethodsLog, true);
    const std::string csv = fileText(directory.path("run.csv"));
    expectReport("methods");
    expectText("methods.objects.txt", listing(directory.directory()));

    // A second report is the same, behind the first in the CSV file, and its objects get the next free names.
    const std::string first = console;
    const Place place(directory.directory());
    const test::CaughtOutput output;
    EXPECT_TRUE(reader.generateReports("run.csv"));
    EXPECT_TRUE(reader.generateReports("run.csv"));
    EXPECT_EQ(output.text(), first + first);
    EXPECT_EQ(fileText("run.csv"), csv + csv);
    EXPECT_EQ(fileText("plan_2.bin"), fileText("plan.bin"));
}

TEST_F(WholeReport, OfAllMethodsThroughTheBackendsReader) {
    ZebProfileLogReaderMURL reader("run.zlog", VisibilityLevel{127});
    report(reader, samplelog::writeMethodsLog, true);
    expectReport("methods-backend");
}

TEST_F(WholeReport, OfTheAdapterUpdater) {
    ZebProfileLogReader reader("run.zlog", VisibilityLevel{127});
    report(reader, samplelog::writeAdapterUpdaterLog, true);
    expectReport("adapter-updater");
    expectText("adapter-updater.objects.txt", listing(directory.directory()));
}

}  // namespace
}  // namespace zeb::profiling
