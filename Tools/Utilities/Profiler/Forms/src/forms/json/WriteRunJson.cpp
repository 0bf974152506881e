#include "forms/json/FieldsJson.h"
#include "forms/json/RunJson.h"

namespace zeb::forms {

void writeRunJson(std::ostream& out, const analysis::Run& run, JsonStyle style, std::size_t maxExecutions) {
    JsonWriter json(out, style);
    json.beginObject();
    json.member("schema", runSchema);
    FieldsWriter(json, maxExecutions).putMembers(run);
    json.endObject();
    json.breakLine();
    json.flush();
}

}  // namespace zeb::forms
