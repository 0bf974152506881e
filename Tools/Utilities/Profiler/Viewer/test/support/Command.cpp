#include "support/Command.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <system_error>

namespace zeb::viewer::test {

namespace {

constexpr int writeNew = O_WRONLY | O_CREAT | O_TRUNC;

void require(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

class FileActions {
public:
    FileActions() { require(posix_spawn_file_actions_init(&actions_), "file actions"); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void open(int descriptor, const std::string& path, int flags) {
        require(posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(), flags, 0666), "open");
    }
    void close(int descriptor) { require(posix_spawn_file_actions_addclose(&actions_, descriptor), "close"); }
    void copy(int from, int to) { require(posix_spawn_file_actions_adddup2(&actions_, from, to), "dup2"); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

pid_t spawn(const std::vector<std::string>& arguments, const FileActions& actions) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    pid_t child = 0;
    require(posix_spawn(&child, argv.front(), actions.get(), nullptr, argv.data(), environ), argv.front());
    return child;
}

}  // namespace

RunningCommand::RunningCommand(const std::vector<std::string>& arguments, Output output) {
    std::array<int, 2> pipe{};
    require(pipe2(pipe.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe");
    ::close(pipe[0]);
    FileActions actions;
    actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
    actions.open(STDERR_FILENO, captures_.path("err"), writeNew);
    switch (output) {
        case Output::captured:
            actions.open(STDOUT_FILENO, captures_.path("out"), writeNew);
            break;
        case Output::full:
            actions.open(STDOUT_FILENO, "/dev/full", O_WRONLY);
            break;
        case Output::brokenPipe:
            actions.copy(pipe[1], STDOUT_FILENO);
            break;
        case Output::closed:
            actions.close(STDOUT_FILENO);
            break;
    }
    process_ = spawn(arguments, actions);
    ::close(pipe[1]);
}

void RunningCommand::sendSignal(int signal) const {
    require(::kill(process_, signal) == 0 ? 0 : errno, "kill");
}

CommandResult RunningCommand::wait() {
    int status = 0;
    if (waitpid(process_, &status, 0) != process_) {
        require(errno, "waitpid");
    }
    CommandResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = fileText(captures_.path("out"));
    result.err = fileText(captures_.path("err"));
    return result;
}

CommandResult runCommand(const std::vector<std::string>& arguments, Output output) {
    return RunningCommand(arguments, output).wait();
}

}  // namespace zeb::viewer::test
