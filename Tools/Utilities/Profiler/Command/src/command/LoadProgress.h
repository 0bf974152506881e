#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zeb::command {

/// Shows on standard error how far a log has been read, as long as it lives: once that takes more than a
/// second, and only on a terminal, which it leaves as it was, and for a command that wants it. It looks at
/// the position of the file that is open for reading beside it, so it needs no help of who reads.
class LoadProgress {
public:
    enum class Measure : bool {
        position,  ///< of a file whose size is known
        growth,    ///< the size of a file that a pipe is kept in
    };

    /// @param descriptor stays open for as long as this lives
    LoadProgress(int descriptor, Measure measure);
    /// @param path of the log that somebody opens
    explicit LoadProgress(const std::string& path);
    LoadProgress(const LoadProgress&) = delete;
    LoadProgress& operator=(const LoadProgress&) = delete;
    ~LoadProgress();

    /// Progress is shown from here on, whoever reads, in lines that begin with the program's name.
    /// @param programName empty for none, as at first
    static void showFor(std::string_view programName);

private:
    class Display;
    std::unique_ptr<Display> display_;  ///< null where nobody sees it
};

}  // namespace zeb::command
