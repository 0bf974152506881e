#pragma once

#include <array>
#include <streambuf>
#include <string_view>

namespace zeb::viewer {

/// Fills the places of standard streams that the caller has closed, so that no file that is opened later
/// lands on one of them. What is written to a standard output that was closed fails.
void reserveStandardStreams();

/// Writes to a file descriptor and remembers the first error; from there on everything is dropped.
class DescriptorBuffer final : public std::streambuf {
public:
    /// @param descriptor stays the caller's
    explicit DescriptorBuffer(int descriptor);

    /// @return the `errno` of the first write that failed, else 0
    [[nodiscard]] int error() const { return error_; }

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    void writeAll(std::string_view bytes);

    int descriptor_;
    int error_ = 0;
    std::array<char, 65536> buffer_{};
};

/// As long as it lives, `std::cout` writes through it, whoever in the process does the writing; so the cause
/// of a failed write is known.
class StandardOutput {
public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput();

    /// Brings out what was written so far.
    /// @throws Failure when some of it could not be written
    void finish();

private:
    DescriptorBuffer buffer_;
    std::streambuf* replaced_;
};

}  // namespace zeb::viewer
