#include "export/ExportProgress.h"

#include <unistd.h>

#include <string>
#include <string_view>

#include "export/ExportOptions.h"
#include "text/NumberText.h"

namespace zeb::exports {

namespace {

constexpr auto quietTime = std::chrono::seconds(1);
constexpr auto betweenLines = std::chrono::milliseconds(200);
constexpr std::string_view clearLine = "\r\x1B[K";

void writeToTerminal(std::string_view text) {
    static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

}  // namespace

ExportProgress::ExportProgress() : isOnTerminal_(::isatty(STDERR_FILENO) == 1) {}

void ExportProgress::show(std::size_t done) {
    if (!isOnTerminal_) {
        return;
    }
    const auto now = Clock::now();
    if (now - began_ < quietTime || now - latest_ < betweenLines) {
        return;
    }
    const double seconds = std::chrono::duration<double>(now - began_).count();
    writeToTerminal(std::string(clearLine) + std::string(programName) + ": " + std::to_string(done) +
                    " logs, " + profiling::fixedPoint(static_cast<double>(done) / seconds, 0) + " a second");
    latest_ = now;
    isShown_ = true;
}

void ExportProgress::hide() {
    if (isShown_) {
        writeToTerminal(clearLine);
        isShown_ = false;
    }
}

}  // namespace zeb::exports
