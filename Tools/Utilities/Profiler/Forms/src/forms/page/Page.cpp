#include "forms/page/Page.h"

#include <string>

#include "forms/json/EmbeddedJson.h"
#include "forms/json/RunJson.h"
#include "forms/page/ExecutionPicture.h"
#include "forms/page/PageParts.h"

namespace zeb::forms {

void writePage(std::ostream& out, const analysis::Run& run) {
    const std::size_t mostSingles = mostSinglesOfGraph(run);
    out << pageParts.beforeData;
    writeEmbedded(out, [&](std::ostream& json) { writeRunJson(json, run, BigNumbers::asText, mostSingles); });
    out << pageParts.beforeExtra << '[';
    std::string json;
    for (const analysis::Graph& graph : run.graphs) {
        json.assign(&graph == run.graphs.data() ? "" : ",");
        appendJson(json, pictureOf(graph, mostSingles));
        out << json;
    }
    out << ']' << pageParts.behind;
}

}  // namespace zeb::forms
