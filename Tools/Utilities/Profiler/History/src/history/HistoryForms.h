#pragma once

#include <span>

#include "analysis/runs/History.h"
#include "command/Forms.h"

namespace zeb::history {

/// What a form of a history is made of.
struct HistoryFormInput {
    const analysis::History& history;
    analysis::RankSumChance& chance;
    const std::optional<analysis::NewestVerdict>& verdict;
};

/// The table of them, in the order in which they are written. A new one is a row here and a printer in Forms.
std::span<const command::Form<HistoryFormInput>> historyForms();

}  // namespace zeb::history
