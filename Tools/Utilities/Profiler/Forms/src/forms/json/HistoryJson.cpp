#include "forms/json/HistoryJson.h"

#include "forms/json/FieldsJson.h"
#include "forms/json/HistoryFields.h"

namespace zeb::forms {

std::string_view keyOf(analysis::SeriesKind kind) {
    using analysis::SeriesKind;
    switch (kind) {
        case SeriesKind::total:
            return "total";
        case SeriesKind::commonFactor:
            return "common-factor";
        case SeriesKind::layer:
            return "layer";
    }
    return "";
}

std::string_view keyOf(analysis::NewestOutcome outcome) {
    using analysis::NewestOutcome;
    switch (outcome) {
        case NewestOutcome::good:
            return "good";
        case NewestOutcome::slower:
            return "slower";
        case NewestOutcome::unsure:
            return "unsure";
    }
    return "";
}

void writeHistoryJson(std::ostream& out, const analysis::History& history, analysis::RankSumChance& chance,
                      const std::optional<analysis::NewestVerdict>& verdict, JsonStyle style) {
    JsonWriter json(out, style);
    FieldsWriter fields(json);
    json.beginObject();
    json.member("schema", historySchema);
    json.key("versions");
    fields.put(history.versions);
    json.member("series_tried", history.seriesTried);
    json.key("warnings");
    fields.put(history.warnings);
    json.key("series");
    json.beginList();
    for (const analysis::HistorySeries& series : history.series) {
        SeriesInHistory in{series, {}, analysis::hiddenStepsOf(history, series, chance)};
        for (const analysis::LevelStep& step : series.course.steps) {
            in.steps.push_back({history, series, step});
        }
        fields.put(in);
    }
    json.endList();
    json.key("verdict");
    fields.put(verdict);
    json.endObject();
    json.breakLine();
    json.flush();
}

}  // namespace zeb::forms
