#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>
#include <string>
#include <system_error>

#include "CommandOptions.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::samplelog {
namespace {

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

// Control characters, which a file name may hold, show as question marks, so that it stays one line.
ExitCode fail(ExitCode exitCode, std::string line) {
    std::replace_if(line.begin(), line.end(), isControl, '?');
    std::cerr << programName << ": " << line << '\n';
    return exitCode;
}

ExitCode writeLog(const CommandOptions& options) {
    // The first write that fails ends the work, and leaves its cause in `errno`.
    std::ofstream out;
    out.exceptions(std::ios::badbit | std::ios::failbit);
    try {
        errno = 0;
        out.open(options.file, std::ios::binary | std::ios::trunc);
        options.kind->write(out, options.network);
        out.close();
    } catch (const std::ios_base::failure&) {
        const int error = errno;
        return fail(ExitCode::badOutput,
                    options.file + ": it can't be written: " + std::generic_category().message(error));
    } catch (const std::bad_alloc&) {
        return fail(ExitCode::badOutput, options.file + ": it can't be written: there is not enough memory");
    }
    return ExitCode::good;
}

ExitCode show(const std::string& text) {
    std::cout << text << std::flush;
    return std::cout ? ExitCode::good : fail(ExitCode::badOutput, "standard output: it can't be written");
}

ExitCode run(int argc, const char* const* argv) {
    try {
        const CommandOptions options = parseCommandLine(argc, argv);
        switch (options.action) {
            case Action::showHelp:
                return show(helpText(commandManual()));
            case Action::showVersion:
                return show(profiling::versionLines(programName, profiling::versionText));
            case Action::writeLog:
                break;
        }
        return writeLog(options);
    } catch (const UsageError& error) {
        return fail(ExitCode::usage, error.what());
    }
}

}  // namespace
}  // namespace zeb::samplelog

int main(int argc, char** argv) {
    // A closed pipe and a file-size limit are errors of the write that meets them, and no sudden end.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    return static_cast<int>(zeb::samplelog::run(argc, argv));
}
