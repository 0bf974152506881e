#include "forms/page/ComparisonPage.h"

#include "forms/json/ComparisonFields.h"
#include "forms/json/ComparisonJson.h"
#include "forms/page/ExecutionPicture.h"
#include "forms/page/PageParts.h"

namespace zeb::forms {

namespace {

// What the page shows and the object of --json does not hold.
void writeView(std::ostream& out, double hideBelow) {
    JsonWriter json(out, jsonOfPage);
    json.beginObject();
    json.member("hide_below", hideBelow);
    json.key("quantiles");
    writeQuantiles(json);
    json.key("totals");
    json.beginObject();
    for (std::size_t index = 0; index < analysis::totalCount; ++index) {
        const auto total = static_cast<analysis::Total>(index);
        json.member(keyOf(total), nameOf(total));
    }
    json.endObject();
    json.endObject();
    json.flush();
}

}  // namespace

void writeComparisonPage(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate, double hideBelow) {
    out << comparisonParts.beforeData;
    writeComparisonJson(out, comparison, gate, jsonOfPage);
    out << comparisonParts.beforeExtra;
    writeView(out, hideBelow);
    out << comparisonParts.beforeLate << comparisonParts.behind;
}

}  // namespace zeb::forms
