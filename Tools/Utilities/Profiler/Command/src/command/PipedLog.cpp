#include "command/PipedLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <string_view>
#include <vector>

#include "command/Failure.h"
#include "command/LoadProgress.h"
#include "command/LogDiagnosis.h"

namespace zeb::command {

namespace {

constexpr const char* standardInput = "/dev/stdin";

// The number of an own descriptor that a path names.
std::optional<int> descriptorNamed(std::string_view path) {
    if (path == standardInput) {
        return STDIN_FILENO;
    }
    for (const std::string_view front : {"/dev/fd/", "/proc/self/fd/"}) {
        if (path.starts_with(front)) {
            const std::string_view digits = path.substr(front.size());
            int number = 0;
            const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
            if (error == std::errc() && rest == digits.data() + digits.size()) {
                return number;
            }
        }
    }
    return std::nullopt;
}

Failure cantKeep(const std::string& log, const NamelessFile& kept, int error) {
    return {ExitCode::badLog, log,
            "the log comes through a pipe and can't be kept in " + kept.directory + ": " + errorText(error)};
}

void copy(const std::string& log, int from, const NamelessFile& kept) {
    std::vector<char> buffer(std::size_t{1} << 18U);
    LoadProgress progress(kept.file.get(), LoadProgress::Measure::growth);
    for (;;) {
        const ssize_t count = restarted([&] { return ::read(from, buffer.data(), buffer.size()); });
        if (count < 0) {
            throw Failure(ExitCode::badLog, log, "the log can't be read: " + errorText(errno));
        }
        if (count == 0) {
            return;
        }
        std::string_view left(buffer.data(), static_cast<std::size_t>(count));
        while (!left.empty()) {
            const ssize_t written =
                restarted([&] { return ::write(kept.file.get(), left.data(), left.size()); });
            if (written < 0) {
                throw cantKeep(log, kept, errno);
            }
            left.remove_prefix(static_cast<std::size_t>(written));
        }
    }
}

}  // namespace

PipedLog::PipedLog(const std::string& log) : log_(log == "-" ? standardInput : log), path_(log_) {
    if (!comesOnce(log_)) {
        return;
    }
    descriptor_ = descriptorNamed(log_);
    kept_ = makeNamelessFile(std::nullopt);
    if (!kept_->file.isOpen()) {
        throw cantKeep(log_, *kept_, errno);
    }
    if (!descriptor_) {
        path_ = kept_->path();
    }
}

void PipedLog::prepare() {
    if (const auto trouble = troubleWithPath(log_)) {
        throw Failure(ExitCode::badLog, log_, *trouble);
    }
    if (kept_) {
        keep();
        if (const auto trouble = troubleWithKept(path_)) {
            throw Failure(ExitCode::badLog, log_, *trouble);
        }
    }
}

void PipedLog::keep() {
    if (!descriptor_) {
        const FileDescriptor pipe(restarted([this] { return ::open(log_.c_str(), O_RDONLY | O_CLOEXEC); }));
        if (!pipe.isOpen()) {
            throw Failure(ExitCode::badLog, log_, "the log can't be read: " + errorText(errno));
        }
        copy(log_, pipe.get(), *kept_);
        return;
    }
    copy(log_, *descriptor_, *kept_);
    // Whoever opens the path now gets the file, from its start.
    if (::dup2(kept_->file.get(), *descriptor_) < 0) {
        throw cantKeep(log_, *kept_, errno);
    }
}

}  // namespace zeb::command
