// A reader plug-in that reads nothing and does what its options tell it:
//   --args=refuse|throw   --load=refuse|throw|memory|grow|odd|note|shrink
//   --report=number|range|memory|grow|swallow|odd|refuse|text|object
//   --trace               tells each call on standard error
// Its report is the values of --say, one a line, on standard output, and "csv" as its CSV report.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "zeb/profiling/ReaderExports.h"

namespace zeb::profiling {
namespace {

struct OddException {};

// Asks for memory until there is none left, and keeps it.
void grow() {
    static std::vector<std::string> kept;
    for (;;) {
        kept.emplace_back(1000, 'x');
    }
}

void actOn(const std::string& what) {
    if (what == "throw") {
        throw std::runtime_error("the cat sat on it");
    }
    if (what == "memory") {
        throw std::bad_alloc();
    }
    if (what == "grow") {
        grow();
    }
    if (what == "odd") {
        throw OddException();
    }
    if (what == "number") {
        throw std::invalid_argument("invalid stoull argument");
    }
    if (what == "range") {
        throw std::out_of_range("stoull argument out of range");
    }
}

class FakeReader final : public IZebPluginLogReader {
public:
    FakeReader(const std::string& logFilePath, VisibilityLevel level)
        : log_(logFilePath),
          created_(logFilePath.substr(logFilePath.rfind('/') + 1) + " " +
                   std::to_string(static_cast<int>(level))) {}
    ~FakeReader() override { trace("deleteReader"); }

    bool parseBackendArgs(commandline2::ParsedArgs& args) override {
        if (args.lookup("--help").found) {
            std::cerr << "help of the fake reader\n";
            return false;
        }
        trace_ = args.lookup("--trace").found;
        trace("createReader " + created_);
        trace("parseBackendArgs");
        load_ = valueOf(args, "--load");
        report_ = valueOf(args, "--report");
        said_ = args.lookup("--say");
        const std::string act = valueOf(args, "--args");
        actOn(act);
        if (act == "refuse") {
            std::cerr << "the fake reader's own words\n";
        }
        return act != "refuse";
    }

    bool loadLog(bool saveObjects) override {
        trace(saveObjects ? "loadLog saving" : "loadLog");
        if (load_ == "note") {
            std::cout << "note\n";
        }
        actOn(load_);
        if (load_ == "shrink") {
            std::filesystem::resize_file(log_, std::filesystem::file_size(log_) - 1);
        }
        return load_ != "refuse" && load_ != "shrink";
    }

    bool generateReports(const std::string& outputPath) override {
        trace("generateReports");
        for (const auto& value : said_.values) {
            std::cout << *value << '\n';
        }
        if (!outputPath.empty()) {
            std::ofstream csv(outputPath, std::ios::app);
            csv << "csv " << (report_ == "text" ? std::string(2000, 'x') : "") << '\n';
        }
        if (report_ == "object") {
            std::ofstream("object.bin") << "bytes";
        }
        if (report_ == "swallow") {
            std::ostringstream text;
            while (text << std::string(1000, 'x')) {
            }
        }
        actOn(report_);
        return report_ != "refuse";
    }

    std::string printHeader() override { return {}; }
    bool readNextMessage() override { return false; }
    void printEvent(std::ostream&, const EventList&, std::uint64_t) override {}
    void writeEventCsv(std::ostream&, const EventList&, std::uint64_t, const std::string&) override {}

private:
    static std::string valueOf(commandline2::ParsedArgs& args, const std::string& name) {
        const auto given = args.lookup(name);
        return given.values.empty() ? "" : *given.values.back();
    }

    void trace(const std::string& call) const {
        if (trace_) {
            std::cerr << call << '\n';
        }
    }

    std::string log_;
    std::string created_;
    bool trace_ = false;
    std::string load_;
    std::string report_;
    commandline2::ArgLookupResult said_;
};

}  // namespace
}  // namespace zeb::profiling

zeb::profiling::IZebPluginLogReader* createReader(const std::string& logFilePath,
                                                  zeb::profiling::VisibilityLevel level) {
    if (logFilePath.ends_with("no-reader")) {
        return nullptr;
    }
    if (logFilePath.ends_with("throw")) {
        throw std::runtime_error("out of readers");
    }
    return std::make_unique<zeb::profiling::FakeReader>(logFilePath, level).release();
}

void deleteReader(zeb::profiling::IZebPluginLogReader* reader) {
    const std::unique_ptr<zeb::profiling::IZebPluginLogReader> owned(reader);
}
