#include <csignal>

#include "Compare.h"
#include "StandardOutput.h"

int main(int argc, char** argv) {
    // A closed pipe and a file-size limit are errors of the write that meets them, and no sudden end.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    zeb::viewer::reserveStandardStreams();
    return static_cast<int>(zeb::compare::runCompare(argc, argv));
}
