#include <gtest/gtest.h>

#include <sstream>

#include "PageSupport.h"
#include "analysis/Inference.h"
#include "forms/text/TopText.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"

namespace zeb::forms {
namespace {

using samplelog::NetworkOptions;
using test::pageOf;
using test::runOf;

const std::string noSteps = " | The log has no messages on start-up and tear-down.";

// What the parts show at first, found by the checks of that name.
std::string shows(const std::string& figures, const std::string& missing, const std::string& executions) {
    return "parts: good\nfigures: " + figures + "\nmissing: " + missing + "\nexecutions: " + executions +
           "\n";
}

analysis::Run millionExecutions() {
    analysis::Run run = runOf(NetworkOptions{.executions = 5});
    analysis::Executions& executions = run.graphs[0].executions;
    executions.startUs.resize(1'000'000);
    executions.queueWaitUs.resize(1'000'000);
    executions.durationUs.resize(1'000'000, 2200);
    executions.durationUs[500'000] = 90'000;
    run.graphs[0].spread = {1'000'000, {2150, 2200, 2230, 2260, 90'000}, 3000};
    addDerivedFigures(run.graphs[0]);
    return run;
}

// Forty executions from 2000 us on, a us apart; every third one takes some times as long.
analysis::Run outliers() {
    analysis::Run run = runOf(NetworkOptions{.executions = 40});
    auto& durations = run.graphs[0].executions.durationUs;
    for (std::size_t index = 0; index < durations.size(); ++index) {
        durations[index] = (2000 + index) * (index % 3 == 2 ? 2 + index : 1);
    }
    run.graphs[0].spread = {40, {2000, 2027, 60'000, 70'000, 81'520}, 2001};
    addDerivedFigures(run.graphs[0]);
    return run;
}

// Figures at the limits of how they are written.
analysis::Run limits() {
    analysis::Run run = runOf(NetworkOptions{});
    run.steps[1].durationUs = (std::uint64_t{1} << 53U) + 1;  // comes as a text
    run.steps.front().events.assign(13, run.steps.front().events.front());
    for (std::size_t index = 0; index < 13; ++index) {
        run.steps.front().events[index].name = "event " + std::to_string(index + 1);
    }
    analysis::Graph& graph = run.graphs.front();
    graph.findings.clear();
    for (const double us : {0.5, 9.0, 42.5, 9'999.0, 10'000.0, 9'999'999.0, 10'000'000.0, 123'456'789.0}) {
        graph.findings.emplace_back().costUs = us;
    }
    graph.zebLayers[0] = {"least", 0, 44, {}};
    graph.zebLayers[1] = {"most", 0, 50'000'000, {}};
    graph.zebLayers[2] = {"less", 15'000, 0, {}};
    graph.zebLayers[3] = {"none", 0, 0, {}};
    graph.breakdown->acceleratorUs = 100;
    addDerivedFigures(graph);
    return run;
}

// A page with what --top shows of the run behind it, with as many layers and in one line each.
std::string pageWithTopOf(const analysis::Run& run) {
    std::ostringstream top;
    printTop(top, run, {.rows = 20, .style = {.hasUnicode = true, .width = 100'000}});
    std::string text = top.str();
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at)) {
        text.replace(at, 1, "&lt;");
    }
    return pageOf(run) + "<pre id=\"top\" hidden>" + text + "</pre>";
}

TEST(PageInBrowser, EachLogIsShownAsItIs) {
    const std::string steps = "parts figures missing executions";
    const std::string withoutLayers =
        "hiddenParts: Costliest ZEB layers; ORU layers by type; All ZEB layers; All ORU layers\n";
    const std::string basic =
        "The run was profiled at level basic, which records no layers. Profile it at level detailed to see "
        "them.";
    const std::string noBackend =
        "The log has no data of the backend on this graph, so its layers are not known. Profile the run on "
        "the Murl backend to see them.";
    test::expectInBrowser({
        {"sample", pageOf(runOf(NetworkOptions{})),
         steps + " hiddenParts strip spread histogram steps clock edges whole rest",
         shows("2190us 84.1% 83.5%", "good", "dot; 20") +
             "hiddenParts: none\nstrip: good\n"
             "spread: 20 2167 us 2190 us 2210 us – 3016 us 3016 us +37.7%\nhistogram: good\n"
             "steps: Load the library 0.0 3.2; Initialize a step of mobilenet_v1_224 3.4 41.7; "
             "Compose mobilenet_v1_224 45.2 9.6; Finalize mobilenet_v1_224 54.9 59.1; "
             "Executions (not to scale) 114 94.9; Tear down mobilenet_v1_224 209 8.3\n"
             "clock: good\nedges: 32,22,32,1\nwhole: good\nrest: good\n"},
        {"outliers", pageOf(outliers()), "spread histogram",
         "spread: 40 2000 us 2027 us 60.0 ms – 81.5 ms 2001 us -1.3%; 39 81.5 × 40.2; 36 75.3 × 37.1; "
         "33 69.1 × 34.1; 30 62.9 × 31.0; 27 56.7 × 28.0; 24 50.6 × 25.0; 21 44.4 × 21.9; 18 38.3 × 18.9; "
         "15 32.2 × 15.9; 12 26.1 × 12.9\nhistogram: good\n"},
        {"limits", pageOf(limits()), "events findingTimes shares rest clock",
         "events: event 1; event 2; event 3; event 4; event 5; event 6; event 7; event 8; event 9; event 10; "
         "event 11; event 12; and 1 more\n"
         "findingTimes: 0.50 us; 9 us; 42.5 us; 9999 us; 10.0 ms; 10,000 ms; 10.0 s; 123 s; 59.1 ms\n"
         "shares: <0.01%; >99.9%; 0.03%; 0.0%\nrest: good\nclock: good\n"},
        {"level basic", pageOf(runOf({.level = samplelog::ProfileLevel::basic})), steps + " hiddenParts",
         shows("2190us 84.1% –", basic, "dot; 20") + withoutLayers},
        {"methods", pageOf(runOf(samplelog::writeMethodsLog)), steps + " hiddenParts large",
         shows("1350us – –", noBackend, "dot,outlier; 4") + withoutLayers + "large: good\n"},
        {"adapter updater", pageOf(runOf(samplelog::writeAdapterUpdaterLog)), steps,
         shows("– – –", "This is a log of the adapter updater, which executes no graph." + noSteps,
               "; undefined")},
        {"nothing", pageOf(analysis::Run{}), steps,
         shows("– – –", "The log has no execution of a graph." + noSteps, "; undefined")},
        {"asynchronous", pageOf(runOf({.async = true})), steps,
         shows("2342us 79.0% 83.5%", "good", "dot; 20")},
        {"graphs", pageOf(runOf({.executions = 2, .graphs = 3})), "graphs graphTable parts",
         "graphs: good\ngraphTable: mobilenet_v1_224 2608 33.4% 84.1%; mobilenet_v1_224_2 2592 33.2% 84.1%; "
         "mobilenet_v1_224_3 2602 33.4% 84.1%; #graph=3\nparts: good\n"},
        {"20,000 layers",
         pageOf(runOf({.level = samplelog::ProfileLevel::internal, .executions = 2, .layers = 5000})),
         "parts strip many", "parts: good\nstrip: good\nmany: good\n"},
        {"a million executions", pageOf(millionExecutions()), "parts executions medians",
         "parts: good\nexecutions: outlier,range; 1,000,000\nmedians: 1\n"},
        {"one layer more than are ranked", pageOf(runOf({.executions = 2, .layers = 21})),
         "ranking drawn width=900 drawn",
         "ranking: 1 other; global_aver…e_pooling2d\ndrawn: good\ndrawn: good\n"},
    });
}

TEST(PageInBrowser, DoesWhatItIsToldTo) {
    const std::string page = pageOf(runOf(NetworkOptions{}));
    test::expectInBrowser({
        {"sample", page, "sorting filtering columns copying following",
         "sorting: good\nfiltering: good\ncolumns: good\ncopying: good\nfollowing: good\n"},
        {"hostile", pageOf(test::hostileRun()), "parts hostile hostileCopy sorting filtering",
         "parts: good\nhostile: good\nhostileCopy: good\nsorting: good\nfiltering: good\n"},
        {"zoom and search", page, "zooming searching typing linking marking words cycles",
         "zooming: good\nsearching: good\ntyping: good\nlinking: good\nmarking: 0 0 0 0 0 0 0 0; 4 24 25 0 "
         "20 25 0 1; #finding=data-movement&zeb.sort=Name; 0 0 0 0 0 0 1 1; 0 0 0 0 0 0 0 0; 0 0 0 1 0 0 0 "
         "1; Finalize mobilenet_v1_224; 0 0 0 0 0 0 0 0; #zeb.sort=Name\nwords: 7; "
         "IPC,Krel,Marlix,ORU,ZEB\ncycles: DSP false true; Krel true false\n"},
        {"beside --top", pageWithTopOf(runOf(NetworkOptions{})), "alike", "alike: good\n"},
        {"a link", page,
         "'open=#layer=4&finding=warm-up&type=SUPERCONV&zoom=0.25-0.5&find=pw&zeb.sort=Name&zeb.falls=1&oru."
         "filter=CONV' "
         "linked",
         "linked: conv_pw_1; Only SUPERCONV ✕; Only conv_pw_1, SUPERCONV ✕; pw; 25.0% of the inference; "
         "descending; CONV; Marked: 1 execution\n"},
        {"damaged links", page,
         "'open=#layer=33&type=none&zoom=0.5-0.4&zeb.sort=nothing' linked "
         "'open=#layer=-1&zoom=a-b&find=<img+src=x>&graph=9' linked "
         "'open=#type=__proto__&finding=__proto__&zoom=NaN-1&layer=1e0x&%E0%A4%A' linked parts",
         "linked: ; ; ; ; ; none; ; \nlinked: ; ; ; <img src=x>; ; none; ; \nlinked: ; ; ; ; ; none; ; "
         "\nparts: "
         "good\n"},
        {"light, dark, narrow, on paper", page,
         "contrast dark contrast width=420 'open=#' deciding outside parts print",
         "contrast: good\ncontrast: good\ndeciding: good\noutside: good\nparts: good\nprint: 6 pages\n"},
        {"300 layers", pageOf(runOf({.executions = 2, .layers = 300})), "strip width=420 'open=#' strip",
         "strip: good\nstrip: good\n"},
        {"another script", page, "refusal", "refusal: good\nconsole: refused by the policy\n"},
    });
}

}  // namespace
}  // namespace zeb::forms
