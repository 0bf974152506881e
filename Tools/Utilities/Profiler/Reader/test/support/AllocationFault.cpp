#include "support/AllocationFault.h"

#include <algorithm>
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

    void* allocate(std::size_t size, std::size_t alignment) noexcept {
        if (fails()) {
            return nullptr;
        }
        const std::size_t rounded = (std::max<std::size_t>(size, 1) + alignment - 1) / alignment * alignment;
        void* const memory = std::aligned_alloc(alignment, rounded);
        outstanding += memory == nullptr ? 0 : 1;
        return memory;
    }

    void* allocateOrThrow(std::size_t size, std::size_t alignment) {
        if (void* const memory = allocate(size, alignment)) {
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
constexpr std::size_t usual = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

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

// All forms: a sanitizer has its own in place of those that are left out.
using zeb::test::allocator;
using zeb::test::usual;
using Size = std::size_t;
using Alignment = std::align_val_t;
using NoThrow = std::nothrow_t;

void* operator new(Size size) {
    return allocator.allocateOrThrow(size, usual);
}
void* operator new[](Size size) {
    return allocator.allocateOrThrow(size, usual);
}
void* operator new(Size size, Alignment alignment) {
    return allocator.allocateOrThrow(size, static_cast<Size>(alignment));
}
void* operator new[](Size size, Alignment alignment) {
    return allocator.allocateOrThrow(size, static_cast<Size>(alignment));
}
void* operator new(Size size, const NoThrow& /*tag*/) noexcept {
    return allocator.allocate(size, usual);
}
void* operator new[](Size size, const NoThrow& /*tag*/) noexcept {
    return allocator.allocate(size, usual);
}
void operator delete(void* memory) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory) noexcept {
    allocator.free(memory);
}
void operator delete(void* memory, Size /*size*/) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory, Size /*size*/) noexcept {
    allocator.free(memory);
}
void operator delete(void* memory, Alignment /*alignment*/) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory, Alignment /*alignment*/) noexcept {
    allocator.free(memory);
}
void operator delete(void* memory, Size /*size*/, Alignment /*alignment*/) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory, Size /*size*/, Alignment /*alignment*/) noexcept {
    allocator.free(memory);
}
void operator delete(void* memory, const NoThrow& /*tag*/) noexcept {
    allocator.free(memory);
}
void operator delete[](void* memory, const NoThrow& /*tag*/) noexcept {
    allocator.free(memory);
}
