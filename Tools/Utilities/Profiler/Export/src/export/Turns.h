#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace zeb::exports {

/// Lets threads work on numbered pieces side by side, and do a part of each in the order of the numbers: a
/// piece takes its turn and passes it on. A piece that has its turn may have the machine to itself, for which
/// the others let go of theirs and begin them again.
class Turns {
public:
    /// Thrown where a thread waits in vain.
    struct Ended {};
    /// Thrown where a piece has to be let go, and begun again.
    struct StepAside {};

    /// The work on a piece, for as long as it lives. It begins when nobody needs the machine alone.
    class Work {
    public:
        /// @throws Ended
        explicit Work(Turns& turns) : turns_(turns) { turns_.beginWork(); }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;
        ~Work() { turns_.endWork(); }

    private:
        Turns& turns_;
    };

    /// Waits for the turn of a piece that is worked on.
    /// @throws Ended, StepAside
    void waitAtWork(std::size_t piece);

    /// Waits for the turn of a piece that is not, and then for the end of all work until `passOn`.
    /// @throws Ended
    void waitToBeAlone(std::size_t piece);

    /// Ends the turn of the piece that has it.
    void passOn();

    /// Ends all waiting, for good.
    void end();

private:
    void beginWork();
    void endWork();
    template <typename Condition>
    void wait(std::unique_lock<std::mutex>& lock, Condition condition);

    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t current_ = 0;
    std::size_t atWork_ = 0;
    bool isOneAlone_ = false;
    bool isEnded_ = false;
};

}  // namespace zeb::exports
