#include "support/TestReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace zeb::test {

namespace {

void flushOutput() {
    std::cout.flush();
    static_cast<void>(std::fflush(stdout));
}

}  // namespace

std::string onStandardOutput(const std::function<void()>& call) {
    std::array<int, 2> ends{};
    flushOutput();
    const int output = dup(STDOUT_FILENO);
    if (output < 0 || pipe2(ends.data(), O_CLOEXEC) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) {
        return "no pipe";
    }
    call();
    flushOutput();
    dup2(output, STDOUT_FILENO);
    close(output);
    close(ends[1]);
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t count = 0; (count = read(ends[0], part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    close(ends[0]);
    return text;
}

}  // namespace zeb::test
