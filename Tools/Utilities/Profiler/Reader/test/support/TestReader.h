#pragma once

#include <cstdint>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>

#include "reader/ZebProfileLogReader.h"
#include "support/TestLog.h"

namespace zeb::test {

/// Keeps what is written to `std::cout`, for as long as it lives.
class CaughtOutput {
public:
    CaughtOutput() : replaced_(std::cout.rdbuf(text_.rdbuf())) {}
    ~CaughtOutput() { std::cout.rdbuf(replaced_); }
    CaughtOutput(const CaughtOutput&) = delete;
    CaughtOutput& operator=(const CaughtOutput&) = delete;

    [[nodiscard]] std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* replaced_;
};

/// The text behind its first `lines` lines.
inline std::string behindLines(const std::string& text, int lines) {
    std::size_t at = 0;
    for (; lines > 0; --lines) {
        at = text.find('\n', at) + 1;
    }
    return text.substr(at);
}

/// For `EXPECT_PRED2`, which shows both texts.
inline bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// What reaches the process's standard output, a pipe meanwhile, during the call.
std::string onStandardOutput(const std::function<void()>& call);

/// A reader that has loaded a log out of a directory of its own, and its reports.
template <typename Reader>
class Loaded {
public:
    explicit Loaded(const samplelog::Bytes& log, bool saveObjects = false, int level = 127)
        : reader(directory.write("log", log), static_cast<profiling::VisibilityLevel>(level)) {
        const CaughtOutput output;
        isLoaded = reader.loadLog(saveObjects);
        notes = output.text();
    }
    explicit Loaded(const std::vector<Message>& messages) : Loaded(logOf({messages})) {}

    /// The console report behind the header's text and its blank line.
    std::string console() {
        const std::string report = wholeConsole();
        return report.substr(report.find("\n\n") + 2);
    }
    std::string wholeConsole(const std::string& csvPath = {}) {
        const CaughtOutput output;
        isReported = reader.generateReports(csvPath);
        return output.text();
    }
    /// The CSV report behind its preamble, which is four lines.
    std::string csv() { return behindLines(wholeCsv(), 4); }
    std::string wholeCsv() {
        const TempDir place;
        wholeConsole(place.path("csv"));
        return fileText(place.path("csv"));
    }

    TempDir directory;
    Reader reader;
    bool isLoaded = false;
    bool isReported = false;
    std::string notes;
};

}  // namespace zeb::test
