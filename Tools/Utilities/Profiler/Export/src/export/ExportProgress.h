#pragma once

#include <chrono>
#include <cstddef>

namespace zeb::exports {

/// Shows on standard error how many logs are done: once that takes more than a second, and only on a
/// terminal, which it leaves as it was.
class ExportProgress {
public:
    ExportProgress();

    /// Shows the number, unless it has shown one a moment ago.
    void show(std::size_t done);
    /// Makes room for a line of somebody else.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    bool isOnTerminal_;
    bool isShown_ = false;
    Clock::time_point began_ = Clock::now();
    Clock::time_point latest_ = began_;
};

}  // namespace zeb::exports
