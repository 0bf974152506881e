// A reader plug-in that reads nothing and does what its options tell it:
//   --args=complain|throw   --load=refuse|throw|memory|grow|odd|note|shrink|fault
//   --report=throw|memory|grow|swallow|odd|refuse|text|object|half|print
//   --calls               tells each call on standard error
// Its report is the values of --say, one a line, on standard output, and "csv" as its CSV report.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "zeb/profiling/ReaderExports.h"

namespace zeb::profiling {
namespace {

void askForMemory() {
    static std::vector<std::string> kept;
    for (;;) {
        kept.emplace_back(1000, 'x');
    }
}

// Text streams catch what is thrown while they ask for memory.
void askForMemoryByText() {
    std::ostringstream text;
    while (text << std::string(1000, 'x')) {
    }
}

const std::map<std::string, std::function<void()>> acts = {
    {"throw", [] { throw std::runtime_error("the cat sat on it"); }},
    {"odd", [] { throw 'o'; }},
    {"note", [] { std::cout << "note\n"; }},
    {"print", [] { std::printf("printed past std::cout\n"); }},
    {"complain", [] { std::cerr << "the fake reader's own words\n"; }},
    {"object", [] { std::ofstream("object.bin") << "bytes"; }},
    {"half", [] { std::cout << "half \xC3"; }},
    {"memory", [] { throw std::bad_alloc(); }},
    {"grow", askForMemory},
    {"swallow", askForMemoryByText},
};

void actOn(const std::string& what) {
    if (const auto act = acts.find(what); act != acts.end()) {
        act->second();
    }
}

class FakeReader final : public IZebPluginLogReader {
public:
    FakeReader(const std::string& logFilePath, VisibilityLevel level)
        : log_(logFilePath), level_(static_cast<int>(level)) {}
    ~FakeReader() override { trace("deleteReader"); }

    bool parseBackendArgs(commandline2::ParsedArgs& args) override {
        if (args.lookup("--help").found) {
            std::cerr << "help of the fake reader\n";
            return false;
        }
        trace_ = args.lookup("--calls").found;
        trace("createReader " + log_ + " " + std::to_string(level_));
        trace("parseBackendArgs");
        load_ = valueOf(args, "--load");
        report_ = valueOf(args, "--report");
        said_ = args.lookup("--say");
        const std::string act = valueOf(args, "--args");
        actOn(act);
        return act != "complain";
    }

    bool loadLog(bool saveObjects) override {
        trace(saveObjects ? "loadLog saving" : "loadLog");
        actOn(load_);
        if (load_ == "shrink") {
            std::filesystem::resize_file(log_, std::filesystem::file_size(log_) - 1);
        }
        if (load_ == "fault") {  // from here on the log, a link, can't be read
            std::filesystem::remove(log_);
            std::filesystem::create_symlink("/proc/self/mem", log_);
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
    int level_;
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
