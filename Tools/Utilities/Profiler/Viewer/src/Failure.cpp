#include "Failure.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace zeb::viewer {

namespace {

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

}  // namespace

void printErrorLine(std::string_view text) noexcept {
    try {
        std::string line = std::string(programName).append(": ").append(text);
        std::replace_if(line.begin(), line.end(), isControl, '?');
        std::cerr << line.append("\n");
    } catch (...) {
        std::fputs("zeb-profile-viewer: there is not enough memory\n", stderr);
    }
}

std::string errorText(int error) {
    return std::generic_category().message(error);
}

}  // namespace zeb::viewer
