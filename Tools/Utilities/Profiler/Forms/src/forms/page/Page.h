#pragma once

#include <ostream>

#include "analysis/Run.h"

namespace zeb::forms {

/// Writes a run as a page for a browser: one HTML file that needs no network. docs/page.md tells what it
/// shows. Texts of the log are data in it and can't become markup or script. It takes little memory beside
/// the run, and long runs of executions are put together, so that they make no long page.
/// @param out its state tells whether writing succeeded
void writePage(std::ostream& out, const analysis::Run& run);

}  // namespace zeb::forms
