#include "benchmark/Processes.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <type_traits>

namespace zeb::bench {

namespace {

static_assert(std::is_trivially_copyable_v<Figures>, "sent through a pipe as it is");

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

struct Ending {
    bool isGood;
    double processorSeconds;
};

Ending waitFor(pid_t process) {
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error("cannot wait for a process");
        }
    }
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0, seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

pid_t forkProcess() {
    std::cout.flush();
    const pid_t process = fork();
    if (process < 0) {
        throw std::runtime_error("cannot fork");
    }
    return process;
}

[[noreturn]] void measureAndExit(const std::function<void(Figures&)>& measure, Figures figures, int pipeEnd) {
    try {
        measure(figures);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        _exit(1);
    }
    _exit(write(pipeEnd, &figures, sizeof(figures)) == static_cast<ssize_t>(sizeof(figures)) ? 0 : 1);
}

[[noreturn]] void execute(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

}  // namespace

void runApart(const std::function<void(Figures&)>& measure, Figures& figures) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("cannot make a pipe");
    }
    const pid_t process = forkProcess();
    if (process == 0) {
        measureAndExit(measure, figures, ends[1]);
    }
    close(ends[1]);
    Figures measured;
    const ssize_t received = read(ends[0], &measured, sizeof(measured));
    close(ends[0]);
    if (!waitFor(process).isGood || received != static_cast<ssize_t>(sizeof(measured))) {
        throw std::runtime_error("a measured process failed");
    }
    figures = measured;
}

double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024.0;
}

double timeOfProgram(const std::vector<std::string>& command) {
    const pid_t process = forkProcess();
    if (process == 0) {
        execute(command);
    }
    const Ending ending = waitFor(process);
    if (!ending.isGood) {
        throw std::runtime_error(command.front() + " failed");
    }
    return ending.processorSeconds;
}

}  // namespace zeb::bench
