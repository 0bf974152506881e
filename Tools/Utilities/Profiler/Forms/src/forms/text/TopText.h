#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

#include "console/ConsoleStyle.h"

namespace zeb::analysis {
struct Run;
}

/// What costs the time of an inference, for a console.
namespace zeb::forms {

enum class LayerOrder : std::uint8_t { time, order, name };

struct TopOptions {
    std::size_t rows = 10;  ///< ZEB layers shown of each graph
    LayerOrder order = LayerOrder::time;
    std::string filter = {};  ///< of ZEB layers' names and of types' names, in any case; empty: all
    console::ConsoleStyle style = {};
};

/// Writes the sections of all graphs. Control characters in names show as question marks.
void printTop(std::ostream& out, const analysis::Run& run, const TopOptions& options);

}  // namespace zeb::forms
