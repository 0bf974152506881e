#include <gtest/gtest.h>

#include "PageSupport.h"
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
    run.graphs[0].spread = {1'000'000, 2150, 2200, 2230, 2260, 90'000, 3000};
    return run;
}

TEST(PageInBrowser, EachLogIsShownAsItIs) {
    const std::string steps = "parts figures missing executions";
    const std::string basic =
        "The run was profiled at level basic, which records no layers. Profile it at level detailed to see "
        "them.";
    const std::string noBackend =
        "The log has no data of the backend on this graph, so it is not known what the time consists of. | "
        "The log has no data of the backend on this graph, so its layers are not known. Profile the run on "
        "the Murl backend to see them.";
    test::expectInBrowser({
        {"sample", pageOf(runOf(NetworkOptions{})), steps + " strip",
         shows("2,229us 84% 84%", "good", "dot; 20") + "strip: good\n"},
        {"level basic", pageOf(runOf({.level = samplelog::ProfileLevel::basic})), steps,
         shows("2,229us 84% –", basic, "dot; 20")},
        {"methods", pageOf(runOf(samplelog::writeMethodsLog)), steps + " large",
         shows("2,150us – –", noBackend, "dot,outlier; 4") + "large: good\n"},
        {"adapter updater", pageOf(runOf(samplelog::writeAdapterUpdaterLog)), steps,
         shows("– – –", "This is a log of the adapter updater, which executes no graph." + noSteps,
               "; undefined")},
        {"nothing", pageOf(analysis::Run{}), steps,
         shows("– – –", "The log has no execution of a graph." + noSteps, "; undefined")},
        {"asynchronous", pageOf(runOf({.async = true})), steps, shows("2,373us 79% 84%", "good", "dot; 20")},
        {"graphs", pageOf(runOf({.executions = 2, .graphs = 3})), "graphs parts",
         "graphs: good\nparts: good\n"},
        {"20,000 layers",
         pageOf(runOf({.level = samplelog::ProfileLevel::internal, .executions = 2, .layers = 5000})),
         "parts strip many", "parts: good\nstrip: good\nmany: good\n"},
        {"a million executions", pageOf(millionExecutions()), "parts executions",
         "parts: good\nexecutions: outlier,range; 1,000,000\n"},
    });
}

TEST(PageInBrowser, DoesWhatItIsToldTo) {
    const std::string page = pageOf(runOf(NetworkOptions{}));
    test::expectInBrowser({
        {"sample", page, "sorting filtering columns copying following",
         "sorting: good\nfiltering: good\ncolumns: good\ncopying: good\nfollowing: good\n"},
        {"hostile", pageOf(test::hostileRun()), "parts hostile hostileCopy sorting filtering",
         "parts: good\nhostile: good\nhostileCopy: good\nsorting: good\nfiltering: good\n"},
        {"another script", page, "refusal", "refusal: good\nconsole: refused by the policy\n"},
    });
}

}  // namespace
}  // namespace zeb::forms
