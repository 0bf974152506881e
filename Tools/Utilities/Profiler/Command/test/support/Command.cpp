#include "support/Command.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace zeb::command::test {

CommandResult runCommand(const Strings& arguments, const std::string& output,
                         const std::function<void(pid_t)>& meanwhile) {
    const TempDir captures;
    // The shell sets the streams up, and becomes the program in the directory that it was started in.
    const std::string script =
        "here=$PWD; cd \"$0\"; mkfifo pipe; exec </dev/null 2>err " + output + "; cd \"$here\"; exec \"$@\"";
    std::vector<const char*> argv = {"/bin/sh", "-c", script.c_str(), captures.directory().c_str()};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    argv.push_back(nullptr);
    auto* const argvOfShell = const_cast<char**>(argv.data());
    pid_t process = -1;
    // A shell has what it runs in the background ignore these, and who runs the tests there hands that on.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGQUIT);
    posix_spawnattr_t attributes;
    EXPECT_EQ(posix_spawnattr_init(&attributes), 0);
    EXPECT_EQ(posix_spawnattr_setsigdefault(&attributes, &signals), 0);
    EXPECT_EQ(posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF), 0);
    EXPECT_EQ(posix_spawn(&process, argv.front(), nullptr, &attributes, argvOfShell, environ), 0);
    posix_spawnattr_destroy(&attributes);
    if (meanwhile) {
        meanwhile(process);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    return {.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            .out = fileText(captures.path("out")),
            .err = fileText(captures.path("err"))};
}

void expectFailure(const CommandResult& result, int exitCode, const std::string& line,
                   const std::string& program) {
    EXPECT_EQ(result.exitCode, exitCode) << line;
    EXPECT_EQ(result.err, program + ": " + line + "\n");
}

}  // namespace zeb::command::test
