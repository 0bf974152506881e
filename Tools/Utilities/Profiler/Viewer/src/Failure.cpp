#include "Failure.h"

#include <cstdio>
#include <iostream>
#include <system_error>

#include "TerminalText.h"

namespace zeb::viewer {

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good";
        case ExitCode::badLog:
            return "the log can't be read, needs more memory than it may have (--max-memory), or has an "
                   "object that would be saved outside of the directory for objects, or as the CSV file";
        case ExitCode::usage:
            return "wrong usage, or the reader has shown its help";
        case ExitCode::badOutput:
            return "a file, an object or standard output can't be written; a file is as it was";
        case ExitCode::badPlugin:
            return "the reader plug-in can't be loaded";
        case ExitCode::badReport:
            return "the report failed on a value in the log";
        case ExitCode::closedPipe:
            return "nobody reads standard output any more; files are written all the same";
    }
    return {};
}

void printErrorLine(std::string_view text) noexcept {
    try {
        std::cerr << std::string(programName).append(": ").append(forms::shownOnOneLine(text)).append("\n");
    } catch (...) {
        std::fputs("zeb-profile-viewer: there is not enough memory\n", stderr);
    }
}

std::string errorText(int error) {
    return std::generic_category().message(error);
}

}  // namespace zeb::viewer
