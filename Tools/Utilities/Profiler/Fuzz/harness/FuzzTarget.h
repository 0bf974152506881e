#pragma once

#include <cstddef>
#include <cstdint>

/// A fuzz target: takes any bytes, and ends the process when a promise is broken. Always gives 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
