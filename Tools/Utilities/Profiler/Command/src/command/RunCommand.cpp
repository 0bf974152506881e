#include "command/RunCommand.h"

#include <csignal>
#include <exception>
#include <string>

#include "command/StandardOutput.h"

namespace zeb::command {

namespace {

ExitCode guarded(std::string_view programName, const std::function<ExitCode()>& work) noexcept {
    try {
        return work();
    } catch (const Failure& failure) {
        try {
            const std::string hint =
                failure.pointsToHelp() ? "; see " + std::string(programName) + " --help" : "";
            printErrorLine(programName, failure.what() + hint);
        } catch (...) {
            printErrorLine(programName, failure.what());
        }
        return failure.exitCode();
    } catch (const std::exception& error) {
        printErrorLine(programName, error.what());
    } catch (...) {
        printErrorLine(programName, "unknown error");
    }
    return ExitCode::badLog;
}

}  // namespace

int runCommand(std::string_view programName, const std::function<ExitCode()>& work) noexcept {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    reserveStandardStreams();
    return static_cast<int>(guarded(programName, work));
}

}  // namespace zeb::command
