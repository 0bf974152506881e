#include "support/Command.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace zeb::viewer::test {

RunningCommand::RunningCommand(const Strings& arguments, const std::string& output) {
    // The shell sets the streams up, and becomes the program in the directory that it was started in.
    const std::string script =
        "here=$PWD; cd \"$0\"; mkfifo pipe; exec </dev/null 2>err " + output + "; cd \"$here\"; exec \"$@\"";
    std::vector<const char*> argv = {"/bin/sh", "-c", script.c_str(), captures_.directory().c_str()};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    argv.push_back(nullptr);
    EXPECT_EQ(
        posix_spawn(&process_, argv.front(), nullptr, nullptr, const_cast<char**>(argv.data()), environ), 0);
}

void RunningCommand::sendSignal(int signal) const {
    EXPECT_EQ(::kill(process_, signal), 0);
}

CommandResult RunningCommand::wait() {
    int status = 0;
    EXPECT_EQ(::waitpid(process_, &status, 0), process_);
    return {.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            .out = fileText(captures_.path("out")),
            .err = fileText(captures_.path("err"))};
}

CommandResult runCommand(const Strings& arguments, const std::string& output) {
    return RunningCommand(arguments, output).wait();
}

void expectFailure(const CommandResult& result, int exitCode, const std::string& line) {
    EXPECT_EQ(result.exitCode, exitCode) << line;
    EXPECT_EQ(result.err, "zeb-profile-viewer: " + line + "\n");
}

}  // namespace zeb::viewer::test
