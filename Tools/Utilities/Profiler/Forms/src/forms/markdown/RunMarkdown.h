#pragma once

#include <ostream>

#include "analysis/Run.h"

namespace zeb::forms {

/// Writes what belongs under a change or into a job's summary: what an inference takes and where, the
/// costliest layers, what stands out; the rest is folded. It has `maxMarkdownBytes` at most, and counts what
/// it leaves out.
void writeRunMarkdown(std::ostream& out, const analysis::Run& run);

}  // namespace zeb::forms
