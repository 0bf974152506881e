#pragma once

#include <ios>
#include <sstream>

namespace zeb::profiling {

/// A text that is composed in memory. Where a plain string stream drops what it has no memory for, this one
/// throws `std::bad_alloc`, so that no text comes out with a part missing.
class TextStream final : public std::ostringstream {
public:
    TextStream() { exceptions(std::ios::badbit); }
};

}  // namespace zeb::profiling
