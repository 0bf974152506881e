#include "forms/page/Page.h"

#include "analysis/Glossary.h"
#include "forms/json/RunJson.h"
#include "forms/page/ExecutionPicture.h"
#include "forms/page/PageParts.h"

namespace zeb::forms {

void writePage(std::ostream& out, const analysis::Run& run) {
    const std::size_t maxSingles = maxSinglesOfGraph(run);
    out << pageParts.beforeData;
    writeRunForPage(out, run, maxSingles);
    out << pageParts.beforeExtra;
    JsonWriter json(out, jsonOfPage);
    json.beginObject();
    json.key("quantiles");
    writeQuantiles(json);
    json.key("glossary");
    json.beginList();
    for (const analysis::Term& term : analysis::glossary) {
        json.beginObject();
        json.member("word", term.word);
        json.member("meaning", term.meaning);
        json.endObject();
    }
    json.endList();
    json.key("pictures");
    json.beginList();
    for (const analysis::Graph& graph : run.graphs) {
        writePicture(json, pictureOf(graph, maxSingles));
    }
    json.endList();
    json.endObject();
    json.flush();
    out << pageParts.beforeLate;
    writeTablesForPage(out, run);
    out << pageParts.behind;
}

}  // namespace zeb::forms
