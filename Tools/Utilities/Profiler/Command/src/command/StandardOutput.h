#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <streambuf>
#include <string_view>

#include "console/TerminalText.h"

namespace zeb::command {

/// Fills the places of standard streams that the caller has closed, so that no file that is opened later
/// lands on one of them. What is written to a standard output that was closed fails.
void reserveStandardStreams();

/// Writes to a file descriptor and remembers the first error; from there on everything is dropped.
class DescriptorBuffer final : public std::streambuf {
public:
    /// @param descriptor stays the caller's
    explicit DescriptorBuffer(int descriptor);

    /// From here on the text is made fit for a terminal, or no longer is.
    void setTerminalText(bool isOn);

    /// Brings out everything, also a character that is not whole.
    void finish();

    /// Drops what is written from here on, or no longer does.
    void setMuted(bool isMuted);

    /// @return how many bytes have been brought out, those that were dropped among them
    [[nodiscard]] std::uint64_t size() const { return size_; }

    /// @return the `errno` of the first write that failed, else 0
    [[nodiscard]] int error() const { return error_; }

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    void writeAll(std::string_view bytes);

    int descriptor_;
    int error_ = 0;
    std::uint64_t size_ = 0;
    bool isMuted_ = false;
    std::optional<console::TerminalText> terminalText_;
    std::array<char, 65536> buffer_{};
};

/// As long as it lives, `std::cout` writes through it, whoever in the process does the writing; so the cause
/// of a failed write is known. On a terminal control characters show as question marks, since names and texts
/// of a log could move its cursor or rewrite what stands there; a file or pipe gets the bytes as they are.
class StandardOutput {
public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput();

    /// Lets a terminal have the bytes as they are too.
    void showRaw() { buffer_.setTerminalText(false); }

    /// Drops what is written from here on, or no longer does.
    void setMuted(bool isMuted) { buffer_.setMuted(isMuted); }

    /// Brings out what was written so far. A pipe that nobody reads any more is no failure: what is written
    /// is dropped then.
    /// @throws Failure when some of it could not be written
    void finish();

    /// @return whether nobody reads the pipe any more
    [[nodiscard]] bool isPipeClosed() const;

private:
    DescriptorBuffer buffer_;
    std::streambuf* replaced_;
};

}  // namespace zeb::command
