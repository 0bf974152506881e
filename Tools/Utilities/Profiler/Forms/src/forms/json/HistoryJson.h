#pragma once

#include <optional>
#include <ostream>

#include "analysis/runs/History.h"
#include "forms/json/JsonWriter.h"

/// How times went over versions, as one JSON object on one line. docs/history.md tells its keys.
namespace zeb::forms {

inline constexpr const char* historySchema = "zeb-profile-history/1";

/// Writes the object and a newline. Text that is no UTF-8 is replaced, what is not known is null.
/// @param verdict on the newest version, if it was judged
void writeHistoryJson(std::ostream& out, const analysis::History& history, analysis::RankSumChance& chance,
                      const std::optional<analysis::NewestVerdict>& verdict, JsonStyle style = {});

}  // namespace zeb::forms
