#include <gtest/gtest.h>

#include "PageSupport.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"

namespace zeb::forms {
namespace {

using samplelog::NetworkOptions;
using test::runOf;

TEST(PageInBrowser, ItsPartsAreThereAndItsTablesDoWhatTheyAreToldTo) {
    EXPECT_IN_BROWSER(runOf(NetworkOptions{}),
                      "parts figures missing sorting filtering columns copying following executions strip",
                      "parts: good\nfigures: 2,229us 84% 84%\nmissing: good\nsorting: good\nfiltering: good\n"
                      "columns: good\ncopying: good\nfollowing: good\nexecutions: dot; 20\nstrip: good\n");
}

TEST(PageInBrowser, AHostileNameStaysText) {
    EXPECT_IN_BROWSER(test::hostileRun(), "parts hostile hostileCopy sorting filtering",
                      "parts: good\nhostile: good\nhostileCopy: good\nsorting: good\nfiltering: good\n");
}

TEST(PageInBrowser, AnotherScriptDoesNotRun) {
    const test::Checked checked = test::check(test::pageOf(runOf(NetworkOptions{})), "refusal");
    if (checked.status == test::noBrowser) {
        GTEST_SKIP() << "no browser is installed, so the page is not looked at";
    }
    EXPECT_TRUE(checked.text.starts_with("refusal: good\nconsole: ")) << checked.text;
    EXPECT_NE(checked.text.find("Content Security Policy"), std::string::npos) << checked.text;
}

TEST(PageInBrowser, EachGraphCanBeChosen) {
    EXPECT_IN_BROWSER(runOf({.executions = 2, .graphs = 3}), "graphs parts", "graphs: good\nparts: good\n");
}

TEST(PageInBrowser, PartsThatAreMissingSayWhy) {
    const std::string basic =
        "The run was profiled at level basic, which records no layers. Profile it at level detailed to see "
        "them.";
    const std::string noBackend =
        "The log has no data of the backend on this graph, so it is not known what the time consists of. | "
        "The log "
        "has no data of the backend on this graph, so its layers are not known. Profile the run on the Murl "
        "backend "
        "to see them.";
    const std::string noSteps = " | The log has no messages on start-up and tear-down.";
    const struct {
        analysis::Run run;
        std::string figures;
        std::string missing;
        std::string executions;
    } cases[] = {
        {runOf({.level = samplelog::ProfileLevel::basic}), "2,229us 84% –", basic, "dot; 20"},
        {runOf(samplelog::writeMethodsLog), "2,150us – –", noBackend, "dot,outlier; 4"},
        {runOf(samplelog::writeAdapterUpdaterLog), "– – –",
         "This is a log of the adapter updater, which executes no graph." + noSteps, "; undefined"},
        {analysis::Run{}, "– – –", "The log has no execution of a graph." + noSteps, "; undefined"},
        {runOf({.async = true}), "2,373us 79% 84%", "good", "dot; 20"},
    };
    for (const auto& [run, figures, missing, executions] : cases) {
        EXPECT_IN_BROWSER(run, "parts figures missing executions",
                          "parts: good\nfigures: " + figures + "\nmissing: " + missing +
                              "\nexecutions: " + executions + "\n");
    }
}

TEST(PageInBrowser, NumbersBeyondThoseOfTheBrowserAreExact) {
    EXPECT_IN_BROWSER(runOf(samplelog::writeMethodsLog), "large", "large: good\n");
}

TEST(PageInBrowser, TwentyThousandLayersAreNoTrouble) {
    EXPECT_IN_BROWSER(runOf({.level = samplelog::ProfileLevel::internal, .executions = 2, .layers = 5000}),
                      "parts strip many", "parts: good\nstrip: good\nmany: good\n");
}

TEST(PageInBrowser, AMillionExecutionsAreShownBinned) {
    analysis::Run run = runOf(NetworkOptions{.executions = 5});
    analysis::Executions& executions = run.graphs[0].executions;
    executions.startUs.resize(1'000'000);
    executions.queueWaitUs.resize(1'000'000);
    executions.durationUs.resize(1'000'000, 2200);
    executions.durationUs[500'000] = 90'000;
    run.graphs[0].spread = {1'000'000, 2150, 2200, 2230, 2260, 90'000, 3000};
    EXPECT_IN_BROWSER(run, "parts executions", "parts: good\nexecutions: outlier,range; 1,000,000\n");
}

}  // namespace
}  // namespace zeb::forms
