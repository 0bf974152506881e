// The library's hashes draw secrets from the system's random device. Here that device gives numbers of its
// own: a fuzzer learns from the way that an input takes, which has to be the same each time. And it costs
// next to nothing, where opening the real one for each list of names took half the time of a run.

#include <random>

// A definition in the program comes before the one in the standard library.
void std::random_device::_M_init(const std::string& /*token*/) {}
void std::random_device::_M_fini() {}

std::random_device::result_type std::random_device::_M_getval() {
    return 0x9E3779B9U;
}
