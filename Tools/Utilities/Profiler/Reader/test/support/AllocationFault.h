#pragma once

#include <cstddef>

/// Takes the place of the program's `operator new`: counts what is allocated, and fails as it is told to.
namespace zeb::test {

/// @return how many allocations of the program have not been freed
std::size_t outstandingAllocations();

enum class FaultKind : bool {
    single,   ///< one allocation fails
    lasting,  ///< one fails, and so do all behind it
};

/// Makes an allocation of the program fail, for as long as it lives.
class AllocationFault {
public:
    /// @param number of the allocation, counted from now on and from 1
    AllocationFault(std::size_t number, FaultKind kind);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    /// @return whether there was that allocation
    [[nodiscard]] bool hasStruck() const;
};

}  // namespace zeb::test
