#include "command/LoadProgress.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "command/Failure.h"
#include "command/FileDescriptor.h"
#include "text/NumberText.h"

namespace zeb::command {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto quietTime = std::chrono::seconds(1);
constexpr auto betweenLines = std::chrono::milliseconds(200);
constexpr std::string_view clearLine = "\r\x1B[K";

std::string nameOfProgram;

void writeToTerminal(std::string_view text) {
    static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

std::string amount(double bytes) {
    constexpr double mega = 1e6;
    constexpr double giga = 1e9;
    return bytes < giga ? profiling::fixedPoint(bytes / mega, 0) + " MB"
                        : profiling::fixedPoint(bytes / giga, 1) + " GB";
}

// The position of an open descriptor, as the system tells it.
std::optional<std::uint64_t> positionOf(const std::string& descriptor) {
    std::ifstream info("/proc/self/fdinfo/" + descriptor);
    std::string key;
    std::uint64_t position = 0;
    return info >> key >> position && key == "pos:" ? std::optional(position) : std::nullopt;
}

// The furthest position of all descriptors that are open on a file: the reader's.
std::optional<std::uint64_t> positionIn(const struct stat& file) {
    std::optional<std::uint64_t> furthest;
    std::error_code error;
    for (fs::directory_iterator each("/proc/self/fd", error), end; !error && each != end;
         each.increment(error)) {
        struct stat open {};
        if (::stat(each->path().c_str(), &open) == 0 && isSameFile(open, file)) {
            furthest = std::max(furthest, positionOf(each->path().filename().string()));
        }
    }
    return furthest;
}

// Signals go to the thread that reads, as they do without this one.
class SignalsElsewhere {
public:
    SignalsElsewhere() {
        sigset_t all;
        sigfillset(&all);
        static_cast<void>(::pthread_sigmask(SIG_BLOCK, &all, &before_));
    }
    SignalsElsewhere(const SignalsElsewhere&) = delete;
    SignalsElsewhere& operator=(const SignalsElsewhere&) = delete;
    ~SignalsElsewhere() { static_cast<void>(::pthread_sigmask(SIG_SETMASK, &before_, nullptr)); }

private:
    sigset_t before_{};
};

}  // namespace

// What is read, and the thread that shows it.
class LoadProgress::Display {
public:
    /// @param size 0 where it is not known
    Display(std::string path, int descriptor, Measure measure, std::uint64_t size)
        : path_(std::move(path)), descriptor_(descriptor), measure_(measure), size_(size) {
        const SignalsElsewhere elsewhere;
        thread_ = std::thread([this] { run(); });
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() {
        {
            const std::lock_guard lock(mutex_);
            isEnded_ = true;
        }
        ended_.notify_one();
        thread_.join();
    }

    // Without a thread there is no progress, and no harm.
    static std::unique_ptr<Display> start(const std::string& path, int descriptor, Measure measure,
                                          std::uint64_t size) {
        if (nameOfProgram.empty() || ::isatty(STDERR_FILENO) != 1) {
            return nullptr;
        }
        try {
            return std::make_unique<Display>(path, descriptor, measure, size);
        } catch (const std::system_error&) {
            return nullptr;
        }
    }

private:
    void run();
    [[nodiscard]] std::optional<std::uint64_t> bytesDone() const;
    [[nodiscard]] std::string line(std::uint64_t done, double seconds) const;

    const std::string path_;
    const int descriptor_;
    const Measure measure_;
    const std::uint64_t size_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnded_ = false;
    std::thread thread_;
};

LoadProgress::LoadProgress(int descriptor, Measure measure)
    : display_(Display::start({}, descriptor, measure, 0)) {}

LoadProgress::LoadProgress(const std::string& path) {
    struct stat status {};
    const bool isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    display_ =
        Display::start(path, -1, Measure::position, isFile ? static_cast<std::uint64_t>(status.st_size) : 0);
}

LoadProgress::~LoadProgress() = default;

void LoadProgress::showFor(std::string_view programName) {
    nameOfProgram = programName;
}

void LoadProgress::Display::run() {
    const auto began = Clock::now();
    std::unique_lock lock(mutex_);
    bool isShown = false;
    auto wait = std::chrono::duration_cast<Clock::duration>(quietTime);
    while (!ended_.wait_for(lock, wait, [this] { return isEnded_; })) {
        wait = betweenLines;
        try {
            if (const auto done = bytesDone()) {
                const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
                writeToTerminal(std::string(clearLine) + line(*done, seconds));
                isShown = true;
            }
        } catch (const std::exception&) {  // memory may be short, which the reader will tell
            wait = quietTime;
        }
    }
    if (isShown) {
        writeToTerminal(clearLine);
    }
}

std::optional<std::uint64_t> LoadProgress::Display::bytesDone() const {
    struct stat status {};
    if (measure_ == Measure::growth) {
        return ::fstat(descriptor_, &status) == 0 ? std::optional(static_cast<std::uint64_t>(status.st_size))
                                                  : std::nullopt;
    }
    return ::stat(path_.c_str(), &status) == 0 ? positionIn(status) : std::nullopt;
}

std::string LoadProgress::Display::line(std::uint64_t done, double seconds) const {
    const auto bytes = static_cast<double>(done);
    const double rate = bytes / seconds;
    std::string text = nameOfProgram + ": ";
    if (size_ == 0) {
        return text + amount(bytes) + " read, " + amount(rate) + "/s";
    }
    const auto size = static_cast<double>(size_);
    text += profiling::fixedPoint(std::min(bytes / size, 1.0) * 100.0, 0) + "% of " + amount(size) + ", " +
            amount(rate) + "/s";
    if (rate > 0.0 && done < size_) {
        text += ", " + profiling::fixedPoint((size - bytes) / rate, 0) + " s left";
    }
    return text;
}

}  // namespace zeb::command
