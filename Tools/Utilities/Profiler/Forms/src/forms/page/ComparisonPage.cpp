#include "forms/page/ComparisonPage.h"

#include <string>

#include "forms/json/ComparisonJson.h"
#include "forms/json/EmbeddedJson.h"
#include "forms/json/JsonText.h"
#include "forms/page/PageParts.h"

namespace zeb::forms {

namespace {

// What the page shows and the object of --json does not hold.
std::string viewJson(double hideBelow) {
    std::string json = R"({"hide_below":)";
    appendJsonNumber(json, hideBelow);
    json += R"(,"fewest_logs":)";
    appendJsonNumber(json, std::uint64_t{analysis::minLogs});
    json += R"(,"totals":{)";
    for (std::size_t index = 0; index < analysis::totalCount; ++index) {
        const auto total = static_cast<analysis::Total>(index);
        json += index == 0 ? "" : ",";
        appendJsonText(json, keyOfTotal(total));
        json += ':';
        appendJsonText(json, nameOf(total));
    }
    return json + "}}";
}

}  // namespace

void writeComparisonPage(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate, double hideBelow) {
    out << comparisonParts.beforeData;
    writeEmbedded(out, [&](std::ostream& json) { writeComparisonJson(json, comparison, gate); });
    out << comparisonParts.beforeExtra << viewJson(hideBelow) << comparisonParts.behind;
}

}  // namespace zeb::forms
