#include "support/AllocationFault.h"

#include <cstdlib>
#include <new>

namespace zeb::test {

namespace {

struct Allocator {
    std::size_t outstanding = 0;
    std::size_t untilFault = 0;  // 0: none is due
    FaultKind kind = FaultKind::single;
    bool hasStruck = false;

    bool fails() {
        if (hasStruck && kind == FaultKind::lasting) {
            return true;
        }
        const bool strikes = untilFault > 0 && --untilFault == 0;
        hasStruck = hasStruck || strikes;
        return strikes;
    }

    void* allocate(std::size_t size) noexcept {
        void* const memory = fails() ? nullptr : std::aligned_alloc(16, (size / 16 + 1) * 16);
        outstanding += memory == nullptr ? 0 : 1;
        return memory;
    }

    void* allocateOrThrow(std::size_t size) {
        if (void* const memory = allocate(size)) {
            return memory;
        }
        throw std::bad_alloc();
    }

    void free(void* memory) noexcept {
        outstanding -= memory == nullptr ? 0 : 1;
        std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): what `delete` itself does
    }
};

constinit Allocator allocator;

}  // namespace

std::size_t outstandingAllocations() {
    return allocator.outstanding;
}

AllocationFault::AllocationFault(std::size_t number, FaultKind kind) {
    allocator.untilFault = number;
    allocator.kind = kind;
    allocator.hasStruck = false;
}

AllocationFault::~AllocationFault() {
    allocator.untilFault = 0;
    allocator.hasStruck = false;
}

bool AllocationFault::hasStruck() const {
    return allocator.hasStruck;
}

}  // namespace zeb::test

// All forms that are called: a sanitizer has its own in place of those that are left out.
using zeb::test::allocator;

void* operator new(std::size_t size) {
    return allocator.allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocator.allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocator.allocate(size);
}
void operator delete(void* memory) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory) noexcept {
    allocator.free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    allocator.free(memory);
}
