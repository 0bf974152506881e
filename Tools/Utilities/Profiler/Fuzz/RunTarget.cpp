// The bytes are the JSON of a run, which is read back and compared with a sound run, each as the base.

#include <algorithm>
#include <optional>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "analysis/MakeRun.h"
#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"
#include "analysis/runs/RunSummary.h"
#include "forms/json/ComparisonJson.h"
#include "forms/json/RunJson.h"
#include "forms/page/ComparisonPage.h"
#include "forms/text/ComparisonText.h"
#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"
#include "harness/MemoryFile.h"
#include "samplelog/NetworkLog.h"

namespace {

using namespace zeb;
using analysis::Comparison;
using analysis::RunSummary;
using fuzz::require;

std::optional<analysis::Run> readBack(const std::string& json) {
    std::istringstream in(json);
    try {
        return forms::readRunJson(in);
    } catch (const std::runtime_error& error) {
        const std::string_view cause = error.what();
        require(!cause.empty() && cause.find('\n') == std::string_view::npos, "a refusal has one line");
        return std::nullopt;
    }
}

std::string jsonOf(const analysis::Run& run) {
    std::ostringstream out;
    forms::writeRunJson(out, run);
    return out.str();
}

RunSummary makeSoundRun() {
    std::ostringstream log;
    samplelog::writeNetworkLog(log, {.executions = 3, .layers = 4, .graphs = 2});
    const std::string bytes = log.str();
    fuzz::MemoryFile file;
    file.assign(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    return analysis::summarize(analysis::makeRun(file.path(), profiling::VisibilityLevel{127}).value());
}

struct Forms {
    std::string text;
    std::string json;
    std::string page;

    bool operator==(const Forms&) const = default;
};

Forms formsOf(const RunSummary& base, const RunSummary& changed) {
    const Comparison comparison = analysis::compare(std::span(&base, 1), std::span(&changed, 1));
    const std::optional<analysis::Gate> gate = analysis::Gate{
        .total = analysis::Total::layers, .maxGrowth = 0.05, .maxLayerGrowth = 0.05, .minChangeUs = 1.0};
    std::ostringstream text;
    std::ostringstream json;
    std::ostringstream page;
    forms::printComparison(text, comparison, {});
    forms::writeComparisonJson(json, comparison, gate);
    forms::writeComparisonPage(page, comparison, gate, 0.01);
    return {text.str(), json.str(), page.str()};
}

void checkForms(const Forms& forms) {
    require(forms.json.find('\n') == forms.json.size() - 1, "the comparison's JSON is one line");
    const auto isControl = [](unsigned char byte) { return (byte < 0x20U && byte != '\n') || byte == 0x7FU; };
    require(std::none_of(forms.text.begin(), forms.text.end(), isControl),
            "no control character of a name is in the comparison's text");
}

void checkAgainstItself(const RunSummary& run) {
    const Comparison comparison = analysis::compare(std::span(&run, 1), std::span(&run, 1));
    require(comparison.addedGraphs.empty() && comparison.goneGraphs.empty(),
            "a run has the graphs that it has");
    for (const analysis::GraphComparison& graph : comparison.graphs) {
        const auto isNoChange = [](const auto& row) {
            return row.verdict == analysis::Verdict::same || row.verdict == analysis::Verdict::unsure;
        };
        require(std::all_of(graph.layers.begin(), graph.layers.end(), isNoChange) &&
                    std::all_of(graph.totals.begin(), graph.totals.end(), isNoChange),
                "a run differs in nothing from itself");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunSummary soundRun = makeSoundRun();
    const auto run = readBack({data, data + size});
    if (!run) {
        return 0;
    }
    const std::string json = jsonOf(*run);
    const auto again = readBack(json);
    require(again && jsonOf(*again) == json, "what is written is read back, and is the same");
    const RunSummary summary = analysis::summarize(*run);
    checkAgainstItself(summary);
    const Forms asBase = formsOf(summary, soundRun);
    checkForms(asBase);
    checkForms(formsOf(soundRun, summary));
    if (fuzz::isCheckedInFull({data, size})) {
        require(formsOf(summary, soundRun) == asBase, "the same runs give the same comparison");
        require(formsOf(analysis::summarize(*again), soundRun).text == asBase.text,
                "a run that was read back compares as before");
    }
    return 0;
}
