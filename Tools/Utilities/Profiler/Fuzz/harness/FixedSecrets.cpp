// The library's hashes draw their secrets from the system. Here they get the same numbers each time: a fuzzer
// learns from the way that an input takes, which has to be the same for the same input.

#include <unistd.h>

#include <algorithm>
#include <cstddef>

// A definition in the program comes before the one in the C library.
extern "C" int getentropy(void* buffer, std::size_t size) {
    constexpr unsigned char anyByte = 0x9E;
    std::fill_n(static_cast<unsigned char*>(buffer), size, anyByte);
    return 0;
}
