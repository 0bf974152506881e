#include "forms/page/QuantileJson.h"

#include "analysis/Run.h"

namespace zeb::forms {

void writeQuantiles(JsonWriter& json) {
    json.beginList();
    for (const analysis::Quantile& quantile : analysis::quantiles) {
        json.beginObject();
        json.member("key", quantile.key);
        json.member("title", quantile.title);
        json.member("min_count", quantile.minCount);
        json.endObject();
    }
    json.endList();
}

}  // namespace zeb::forms
