#pragma once

#include <cstddef>
#include <fstream>
#include <istream>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "command/runs/Labels.h"

namespace zeb::command {

/// A log that is to be read.
struct Input {
    std::size_t position = 0;  ///< among all
    std::string path;
    Labels labels;
};

/// The logs of a call: those of the command line, then those that a file names, which is read line by line as
/// they are asked for. Any thread may ask.
class InputList {
public:
    /// @param logs has to outlive it
    /// @param filesFrom a file, "-" for standard input, or empty
    /// @param labels of all
    /// @throws Failure when the file can't be read
    InputList(const std::vector<std::string>& logs, const std::string& filesFrom, Labels labels);

    /// @return nothing behind the last
    /// @throws Failure for a line that is none
    std::optional<Input> next();

private:
    std::optional<Input> nextOfFile();

    const std::vector<std::string>& logs_;
    std::string filesFrom_;
    const Labels labels_;
    std::ifstream file_;
    std::istream* lines_ = nullptr;
    std::size_t line_ = 0;
    std::size_t position_ = 0;
    std::mutex mutex_;
};

}  // namespace zeb::command
