#include "Failure.h"

#include <cstdio>
#include <iostream>
#include <system_error>

#include "TerminalText.h"

namespace zeb::viewer {

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
