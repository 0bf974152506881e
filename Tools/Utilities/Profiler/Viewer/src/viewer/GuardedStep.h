#pragma once

#include <exception>
#include <new>
#include <string>

#include "command/Failure.h"
#include "command/MemoryLimit.h"

namespace zeb::viewer {

/// A piece of work, and the words in front of the cause when it fails, and when it is memory that it wants:
/// more than a log may have is that log's fault, whichever step finds out.
struct GuardedStep {
    command::ExitCode exitCode;
    std::string subject;
    std::string failed;
    std::string wanting;
};

/// Does the work. An exception becomes a failure that tells the cause, and so does an allocation whose
/// failure somebody has swallowed.
/// @param memory the limit that the process has; null before it has one
/// @return what the work gives
template <typename Work>
auto guarded(const GuardedStep& step, command::MemoryLimit* memory, Work work) {
    try {
        auto result = work();
        if (memory != nullptr && command::MemoryLimit::wasHit()) {
            throw std::bad_alloc();
        }
        return result;
    } catch (const command::Failure&) {
        throw;
    } catch (const std::bad_alloc&) {
        if (memory == nullptr) {
            throw command::Failure(step.exitCode, step.subject,
                                   step.wanting + command::MemoryLimit::withoutLimit);
        }
        memory->releaseReserve();
        throw command::Failure(command::ExitCode::badLog, step.subject, step.wanting + memory->cause());
    } catch (const std::exception& error) {
        throw command::Failure(step.exitCode, step.subject, step.failed + error.what());
    } catch (...) {
        throw command::Failure(step.exitCode, step.subject, step.failed + "unknown error");
    }
}

}  // namespace zeb::viewer
