#pragma once

#include <span>
#include <string>

#include "console/CommandManual.h"

namespace zeb::manual {

/// What the foot of a page says.
struct Release {
    std::string version;
    std::string date;  ///< "2026-01-31"
};

/// @param others the names of further commands that have pages
/// @return the manual page of a command in the macros of man(7), for section 1
std::string manPage(const console::CommandManual& manual, const Release& release,
                    std::span<const std::string> others);

}  // namespace zeb::manual
