#include "history/HistoryForms.h"

#include "forms/json/HistoryJson.h"
#include "forms/page/HistoryPage.h"

namespace zeb::history {

namespace {

using command::Words;
using Form = command::Form<HistoryFormInput>;

Words writeJson(std::ostream& out, const HistoryFormInput& input) {
    forms::writeHistoryJson(out, input.history, input.chance, input.verdict);
    return {};
}

Words writePage(std::ostream& out, const HistoryFormInput& input) {
    forms::writeHistoryPage(out, input.history, input.chance, input.verdict);
    return {};
}

constexpr Form formTable[] = {
    {"--json", "Write the history to FILE as JSON", writeJson},
    {"--html", "Write the history to FILE as a page for a browser", writePage},
};

}  // namespace

std::span<const Form> historyForms() {
    return formTable;
}

}  // namespace zeb::history
