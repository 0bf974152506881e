#include <cerrno>
#include <fstream>
#include <iostream>
#include <new>
#include <string>

#include "command/RunCommand.h"
#include "command/StandardOutput.h"
#include "samplelog/command/CommandOptions.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::samplelog {
namespace {

using command::Action;
using command::ExitCode;
using command::Failure;

void writeLog(const CommandOptions& options) {
    const auto failure = [&options](const std::string& cause) {
        return Failure(ExitCode::badOutput, options.file, "it can't be written: " + cause);
    };
    // The first write that fails ends the work, and leaves its cause in `errno`.
    std::ofstream out;
    out.exceptions(std::ios::badbit | std::ios::failbit);
    try {
        errno = 0;
        out.open(options.file, std::ios::binary | std::ios::trunc);
        options.kind->write(out, options.network);
        out.close();
    } catch (const std::ios_base::failure&) {
        throw failure(command::errorText(errno));
    } catch (const std::bad_alloc&) {
        throw failure("there is not enough memory");
    }
}

ExitCode run(int argc, const char* const* argv) {
    command::StandardOutput output;
    const CommandOptions options = parseCommandLine(argc, argv);
    switch (options.action) {
        case Action::showHelp:
            std::cout << helpText(commandManual());
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            break;
        case Action::work:
            writeLog(options);
            break;
    }
    output.finish();
    return ExitCode::good;
}

}  // namespace
}  // namespace zeb::samplelog

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::samplelog::programName,
                                    [&] { return zeb::samplelog::run(argc, argv); });
}
