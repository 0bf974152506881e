#pragma once

#include <cstdint>
#include <string>

namespace zeb::profiling {

/// The names that an object's file may get, one behind the other as those before are taken: "a.bin",
/// "a_1.bin", "a_2.bin". Only the last "." of the whole name counts, also one in a directory's name.
/// @param number 0 gives the name itself
std::string numberedName(const std::string& name, std::uint64_t number);

}  // namespace zeb::profiling
