#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "command/FileDescriptor.h"

namespace zeb::command {

/// A file that a form goes to. A regular or a new one is written beside its place and put there once it is
/// whole, so that it is whole or as it was; a link stays a link. Anything else (a device, a pipe) is written
/// straight, and so is standard output, which is named "-".
class FormFile {
public:
    static constexpr const char* standardOutput = "-";

    /// Opens it as far as can be done without changing anything.
    /// @param logs that are read, of which it may be none
    /// @throws Failure when it can't be written, or is a log
    FormFile(const std::string& path, std::span<const std::string> logs);
    FormFile(FormFile&& other) noexcept;
    FormFile& operator=(FormFile&& other) = delete;
    ~FormFile();

    /// @param print writes the form; what it throws passes, with the file as it was
    /// @return its bytes
    /// @throws Failure when it can't be written; std::bad_alloc when an allocation has failed, also when
    /// `print`
    ///         has caught that, as text streams do
    std::uint64_t write(const std::function<void(std::ostream&)>& print);

private:
    struct Beside {
        FileDescriptor file;
        std::string name;  ///< empty: it has none yet
    };

    [[nodiscard]] bool openBeside();
    void putInPlace();

    std::string path_;
    std::string place_;  ///< where links lead; empty for what is written straight
    std::optional<Beside> beside_;
};

}  // namespace zeb::command
