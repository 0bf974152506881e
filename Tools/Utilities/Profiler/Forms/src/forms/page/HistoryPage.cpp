#include "forms/page/HistoryPage.h"

#include "forms/json/HistoryJson.h"
#include "forms/page/PageParts.h"

namespace zeb::forms {

void writeHistoryPage(std::ostream& out, const analysis::History& history, analysis::RankSumChance& chance,
                      const std::optional<analysis::NewestVerdict>& verdict) {
    out << historyParts.beforeData;
    writeHistoryJson(out, history, chance, verdict, jsonOfPage);
    out << historyParts.beforeExtra << "{}" << historyParts.beforeLate << historyParts.behind;
}

}  // namespace zeb::forms
