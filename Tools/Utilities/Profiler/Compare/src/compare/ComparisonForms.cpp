#include "compare/ComparisonForms.h"

#include <cstdint>

#include "forms/json/ComparisonJson.h"
#include "forms/markdown/ComparisonMarkdown.h"
#include "forms/page/ComparisonPage.h"

namespace zeb::compare {

namespace {

using command::Words;
using Form = command::Form<ComparisonFormInput>;

Words writeJson(std::ostream& out, const ComparisonFormInput& input) {
    forms::writeComparisonJson(out, input.comparison, input.options.gate);
    return {};
}

Words writePage(std::ostream& out, const ComparisonFormInput& input) {
    forms::writeComparisonPage(out, input.comparison, input.options.gate, input.options.hideBelow);
    return {};
}

Words writeMarkdown(std::ostream& out, const ComparisonFormInput& input) {
    forms::writeComparisonMarkdown(out, input.comparison, input.options.gate, input.options.hideBelow);
    return {};
}

constexpr Form formTable[] = {
    {"--json", "Write the comparison to FILE as JSON", writeJson},
    {"--html", "Write the comparison to FILE as a page for a browser", writePage, std::uint64_t{50} << 20U,
     "are more than most browsers show at ease; --json has the same figures"},
    {"--markdown", "Write the comparison to FILE as Markdown, for a pull request or a job's summary",
     writeMarkdown},
};

}  // namespace

std::span<const Form> comparisonForms() {
    return formTable;
}

}  // namespace zeb::compare
