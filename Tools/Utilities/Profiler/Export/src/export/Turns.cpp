#include "export/Turns.h"

namespace zeb::exports {

template <typename Condition>
void Turns::wait(std::unique_lock<std::mutex>& lock, Condition condition) {
    changed_.wait(lock, [&] { return isEnded_ || condition(); });
    if (isEnded_) {
        throw Ended();
    }
}

void Turns::waitAtWork(std::size_t piece) {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return current_ == piece || isOneAlone_; });
    if (current_ != piece) {
        throw StepAside();
    }
}

void Turns::waitToBeAlone(std::size_t piece) {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return current_ == piece; });
    isOneAlone_ = true;
    changed_.notify_all();
    wait(lock, [this] { return atWork_ == 0; });
}

void Turns::passOn() {
    const std::lock_guard lock(mutex_);
    ++current_;
    isOneAlone_ = false;
    changed_.notify_all();
}

void Turns::end() {
    const std::lock_guard lock(mutex_);
    isEnded_ = true;
    changed_.notify_all();
}

void Turns::beginWork() {
    std::unique_lock lock(mutex_);
    wait(lock, [this] { return !isOneAlone_; });
    ++atWork_;
}

void Turns::endWork() {
    const std::lock_guard lock(mutex_);
    --atWork_;
    changed_.notify_all();
}

}  // namespace zeb::exports
