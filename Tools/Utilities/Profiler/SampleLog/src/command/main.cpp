#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>
#include <string>
#include <system_error>

#include "AdapterUpdaterLog.h"
#include "CommandOptions.h"
#include "MethodsLog.h"
#include "NetworkLog.h"
#include "SharedEventsLog.h"
#include "zeb/profiling/Version.h"

namespace zeb::samplelog {
namespace {

enum class ExitCode : std::uint8_t { good = 0, usage = 2, badOutput = 3 };

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

void writeKind(std::ostream& out, const CommandOptions& options) {
    switch (options.kind) {
        case LogKind::network:
            return writeNetworkLog(out, options.network);
        case LogKind::methods:
            return writeMethodsLog(out);
        case LogKind::adapterUpdater:
            return writeAdapterUpdaterLog(out);
        case LogKind::sharedEvents:
            return writeSharedEventsLog(out);
    }
}

ExitCode writeLog(const CommandOptions& options) {
    // The first write that fails ends the work, and leaves its cause in `errno`.
    std::ofstream out;
    out.exceptions(std::ios::badbit | std::ios::failbit);
    try {
        errno = 0;
        out.open(options.file, std::ios::binary | std::ios::trunc);
        writeKind(out, options);
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
                return show(helpText());
            case Action::showVersion:
                return show(std::string(programName) + " " + std::string(profiling::versionText) + "\n");
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
