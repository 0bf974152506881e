#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "command/MemorySize.h"

namespace zeb::command {

/// @param root of the file system, "/" but in tests
/// @return bytes that the control groups of this process allow it, of either version; the largest number when
///         they set no limit
std::uint64_t controlGroupLimit(const std::string& root);

/// Limits what the process may have in memory, for good: its heap and everything else that it alone writes
/// to. Where it asks for more, the allocation throws `std::bad_alloc`.
class MemoryLimit {
public:
    /// Sanitizers reserve more than any machine has; under one the limit is not set.
    static const bool canBeSet;

    /// The words for a failure while no limit is set.
    static constexpr const char* withoutLimit = "needs more memory than there is";

    /// A limit that the process already has is kept when it is lower.
    /// @throws Failure when the system refuses it
    explicit MemoryLimit(const MemorySize& size);

    /// @return whether an allocation of this thread has failed, also when somebody has caught that: text
    /// streams do,
    ///         and lose what was to be written
    [[nodiscard]] static bool wasHit();

    /// Frees a little memory that was put aside, so that a failure for want of memory can be told.
    void releaseReserve() { reserve_.reset(); }

    /// @return the cause of such a failure, "needs more than 2G of memory", to follow the name of what needs
    /// it
    [[nodiscard]] const std::string& cause() const { return cause_; }

private:
    std::string cause_;
    std::unique_ptr<std::byte[]> reserve_;
};

}  // namespace zeb::command
