#pragma once

#include <csignal>

namespace zeb::command {

/// Holds back, as long as it lives, the signals that end the process: one in the middle of a file's last step
/// would leave a part behind.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            sigaddset(&ending, signal);
        }
        static_cast<void>(::pthread_sigmask(SIG_BLOCK, &ending, &before_));
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { static_cast<void>(::pthread_sigmask(SIG_SETMASK, &before_, nullptr)); }

private:
    sigset_t before_{};
};

}  // namespace zeb::command
