#include "command/Failure.h"

#include <cstdio>
#include <iostream>
#include <system_error>

#include "console/TerminalText.h"

namespace zeb::command {

void printErrorLine(std::string_view programName, std::string_view text) noexcept {
    try {
        std::cerr << std::string(programName).append(": ").append(console::shownOnOneLine(text)).append("\n");
    } catch (...) {
        std::fprintf(stderr, "%.*s: there is not enough memory\n", static_cast<int>(programName.size()),
                     programName.data());
    }
}

std::string errorText(int error) {
    return std::generic_category().message(error);
}

}  // namespace zeb::command
