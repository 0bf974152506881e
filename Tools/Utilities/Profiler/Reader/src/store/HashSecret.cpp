#include "store/HashSecret.h"

#include <sys/random.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>

namespace zeb::profiling {

namespace {

// Odd, so that a product loses nothing of it.
HashSecret oddSecret(std::uint64_t first, std::uint64_t second) {
    return {first | 1U, second | 1U};
}

// Moves every bit of a number into many others.
std::uint64_t scrambled(std::uint64_t number) {
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

}  // namespace

HashSecret makeHashSecret() noexcept {
    std::array<std::uint64_t, 2> random{};
    return getentropy(random.data(), sizeof(random)) == 0 ? oddSecret(random[0], random[1])
                                                          : makeHashSecretWithoutSystem();
}

HashSecret makeHashSecretWithoutSystem() noexcept {
    static std::atomic<std::uint64_t> count = 0;
    const int onStack = 0;
    const auto now = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::uint64_t seed = scrambled(now) + scrambled(reinterpret_cast<std::uintptr_t>(&onStack)) +
                               scrambled(reinterpret_cast<std::uintptr_t>(&count)) + ++count;
    return oddSecret(scrambled(seed), scrambled(~seed));
}

}  // namespace zeb::profiling
