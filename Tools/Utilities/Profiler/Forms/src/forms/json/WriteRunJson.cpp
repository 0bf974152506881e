#include "forms/json/FieldsJson.h"
#include "forms/json/RunJson.h"

namespace zeb::forms {

void writeRunJson(std::ostream& out, const analysis::Run& run, JsonStyle style) {
    JsonWriter json(out, style);
    json.beginObject();
    json.member("schema", runSchema);
    FieldsWriter(json).putMembers(run);
    json.endObject();
    json.breakLine();
    json.flush();
}

void writeRunForPage(std::ostream& out, const analysis::Run& run, std::size_t maxExecutions) {
    JsonWriter json(out, jsonOfPage);
    FieldsWriter(json, Audience::page, maxExecutions).put(run);
    json.flush();
}

void writeTablesForPage(std::ostream& out, const analysis::Run& run) {
    JsonWriter json(out, jsonOfPage);
    json.beginList();
    for (const analysis::Graph& graph : run.graphs) {
        FieldsWriter(json).putColumns(graph.oruLayers,
                                      [](std::string_view key) { return !isOfPictures(key); });
    }
    json.endList();
    json.flush();
}

}  // namespace zeb::forms
