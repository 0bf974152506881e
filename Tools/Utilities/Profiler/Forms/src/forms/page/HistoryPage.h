#pragma once

#include <optional>
#include <ostream>

#include "analysis/runs/History.h"

namespace zeb::forms {

/// Writes how times went over versions as one HTML file that needs nothing else. Its data is the object of
/// `writeHistoryJson`.
void writeHistoryPage(std::ostream& out, const analysis::History& history, analysis::RankSumChance& chance,
                      const std::optional<analysis::NewestVerdict>& verdict);

}  // namespace zeb::forms
