#include "analysis/Findings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "analysis/FigureText.h"
#include "analysis/Trend.h"
#include "text/NumberText.h"

namespace zeb::analysis {

namespace {

using profiling::fixedPoint;

// A third of a whole is one, whatever the division has rounded.
bool reaches(double percent, double threshold) {
    constexpr double rounding = 1e-9;
    return percent >= threshold - rounding;
}

double layersUs(const Graph& graph) {
    return static_cast<double>(graph.layers.timeUs());
}

using Found = std::optional<Finding>;  // nothing when the rule does not hold

Finding sentence(std::string text) {
    Finding finding;
    finding.text = std::move(text);
    return finding;
}

// What costs an inference the figure of its sentence.
Finding sentence(std::string text, double us, double percent) {
    Finding finding = sentence(std::move(text));
    finding.us = us;
    finding.percent = percent;
    finding.costUs = us;
    return finding;
}

Found noBackendData(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    if (graph.breakdown) {
        return std::nullopt;
    }
    return sentence(
        "The log has no profile of the Murl backend on this graph, so there is nothing on its layers.");
}

Found levelBasic(const Graph& graph, const Run& run, double /*threshold*/) {
    if (!graph.breakdown || run.level != Level::basic) {
        return std::nullopt;
    }
    return sentence(
        "The run was profiled at level basic, so the log has no data on layers; level detailed has.");
}

Found countsDisagree(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    if (!graph.breakdown || graph.breakdown->executionCount == graph.executions.count()) {
        return std::nullopt;
    }
    return sentence("The log has " + counted(graph.executions.count(), "execution", "executions") +
                    ", and the backend counts " + std::to_string(graph.breakdown->executionCount) +
                    ", so its averages are not of the same executions.");
}

Found layersDoNotAddUp(const Graph& graph, const Run& /*run*/, double threshold) {
    if (graph.oruLayers.empty() || !graph.breakdown || graph.breakdown->acceleratorUs.value_or(0) == 0) {
        return std::nullopt;
    }
    const auto accelerator = static_cast<double>(*graph.breakdown->acceleratorUs);
    const auto handingOver = static_cast<double>(graph.layers.handingOverUs);
    const double difference = accelerator - layersUs(graph) - handingOver;
    const double part = percentOf(difference, accelerator);
    if (!reaches(std::abs(part), threshold)) {
        return std::nullopt;
    }
    return sentence("The layers' times add up to " + timeText(layersUs(graph)) +
                        (handingOver > 0.0 ? ", handing over takes " + timeText(handingOver) : "") +
                        ", the accelerator's time is " + timeText(accelerator) + ": " +
                        timeText(std::abs(difference)) +
                        (difference > 0 ? " of it belong to no layer." : " more than it."),
                    std::abs(difference), std::abs(part));
}

// The queue wait has a rule of its own.
Found outsideAccelerator(const Graph& graph, const Run& /*run*/, double threshold) {
    if (!graph.breakdown || graph.breakdown->acceleratorUs.value_or(0) == 0) {
        return std::nullopt;
    }
    const auto whole = static_cast<double>(graph.average.durationUs);
    const bool waits = graph.breakdown->queueWaitUs.value_or(0) != 0;
    const double outside = whole - static_cast<double>(*graph.breakdown->acceleratorUs) -
                           static_cast<double>(graph.breakdown->queueWaitUs.value_or(0));
    const double part = percentOf(outside, whole);
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return sentence(timeText(outside) + " of an inference, " + percentText(part) +
                        ", pass outside of the accelerator" + (waits ? " and of queues." : "."),
                    outside, part);
}

Found queueWait(const Graph& graph, const Run& /*run*/, double threshold) {
    if (!graph.breakdown || !graph.breakdown->queueWaitUs) {
        return std::nullopt;
    }
    const auto wait = static_cast<double>(*graph.breakdown->queueWaitUs);
    const double part = percentOf(wait, static_cast<double>(graph.average.durationUs));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return sentence(
        "An execution waits " + timeText(wait) + " in queues, " + percentText(part) + " of its time.", wait,
        part);
}

Found dspBetweenOffloaded(const Graph& graph, const Run& /*run*/, double threshold) {
    const auto isOffloaded = [](const OruLayer& layer) { return layer.isOffloaded; };
    const auto first = std::find_if(graph.oruLayers.begin(), graph.oruLayers.end(), isOffloaded);
    const auto last = std::find_if(graph.oruLayers.rbegin(), graph.oruLayers.rend(), isOffloaded).base();
    std::vector<std::uint32_t> layers;
    double time = 0.0;
    for (auto layer = first; layer < last; ++layer) {
        if (!layer->isOffloaded) {
            layers.push_back(layer->id);
            time += static_cast<double>(layer->timeUs());
        }
    }
    const double part = percentOf(time, layersUs(graph));
    if (layers.empty() || !reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding = sentence(counted(layers.size(), "layer runs", "layers run") +
                                   " on the DSP between layers of the Krel core: " + timeText(time) + ", " +
                                   percentText(part) + " of the layers' time.",
                               time, part);
    finding.oruLayers = std::move(layers);
    return finding;
}

Found offloadOverhead(const Graph& graph, const Run& /*run*/, double threshold) {
    double hal = 0.0;
    double driver = 0.0;
    double cacheFlush = 0.0;
    double krel = 0.0;
    std::vector<std::uint32_t> layers;
    for (const OruLayer& layer : graph.oruLayers) {
        hal += layer.halUs;
        driver += layer.driverUs;
        cacheFlush += layer.cacheFlushUs;
        krel += layer.krelExecUs;
        if (layer.isOffloaded) {
            layers.push_back(layer.id);
        }
    }
    const double part = percentOf(hal - krel, krel);
    if (krel <= 0.0 || !reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding = sentence("Offloaded layers take " + timeText(hal) + " in the HAL, " + timeText(driver) +
                                   " in the driver and " + timeText(cacheFlush) +
                                   " flushing caches, against " + timeText(krel) + " on the Krel core.",
                               hal - krel, part);
    finding.oruLayers = std::move(layers);
    return finding;
}

constexpr std::array<std::string_view, 5> dataMovement = {"LAYOUT", "CACHE", "QUANTIZE", "DMA_MOVER",
                                                          "MEM_OP"};

bool movesData(const OruLayer& layer) {
    return std::any_of(dataMovement.begin(), dataMovement.end(), [&layer](std::string_view part) {
        return layer.typeName.find(part) != std::string::npos;
    });
}

Found dataIsMoved(const Graph& graph, const Run& /*run*/, double threshold) {
    std::vector<std::uint32_t> layers;
    double time = 0.0;
    for (const OruLayer& layer : graph.oruLayers) {
        if (movesData(layer)) {
            layers.push_back(layer.id);
            time += static_cast<double>(layer.timeUs());
        }
    }
    const double part = percentOf(time, layersUs(graph));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding = sentence(counted(layers.size(), "layer changes or moves", "layers change or move") +
                                   " data only (layout, cache, quantisation): " + timeText(time) + ", " +
                                   percentText(part) + " of the layers' time.",
                               time, part);
    finding.oruLayers = std::move(layers);
    return finding;
}

std::vector<std::uint32_t> oruLayersOf(const ZebLayer& layer) {
    return layer.oruLayers;
}

std::vector<std::uint32_t> oruLayersOf(const OruLayer& layer) {
    return {layer.id};
}

Found dominantLayer(const Graph& graph, const Run& /*run*/, double threshold) {
    std::string name;
    std::uint64_t time = 0;
    std::vector<std::uint32_t> layers;
    forEachLayer(graph, [&](const auto& layer) {
        if (layer.timeUs() > time) {
            time = layer.timeUs();
            name = layerName(layer);
            layers = oruLayersOf(layer);
        }
    });
    const double part = percentOf(static_cast<double>(time), layersUs(graph));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding = sentence(name + " alone takes " + timeText(static_cast<double>(time)) + ", " +
                                   percentText(part) + " of the layers' time.",
                               static_cast<double>(time), part);
    finding.oruLayers = std::move(layers);
    return finding;
}

constexpr std::uint64_t minForWarmUp = 5;  // executions; of fewer none is usual

Found warmUp(const Graph& graph, const Run& /*run*/, double threshold) {
    const Spread& spread = graph.spread;
    const double excess = spread.firstUs.value_or(0.0) - spread.medianUs();
    const double part = percentOf(excess, spread.medianUs());
    if (spread.count < minForWarmUp || !reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding =
        sentence("The first execution takes " + timeText(*spread.firstUs) + ", " + percentText(part) +
                     " more than the median of " + timeText(spread.medianUs()) + ".",
                 excess, part);
    finding.executions = {0};
    return finding;
}

Found wideSpread(const Graph& graph, const Run& /*run*/, double threshold) {
    const Spread& spread = graph.spread;
    const double excess = spread.p90Us() - spread.medianUs();
    const double part = percentOf(excess, spread.medianUs());
    if (!spread.shownUs(positionOfQuantile(0.9)) || !reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding =
        sentence("One execution in ten takes " + timeText(spread.p90Us()) + " or more, " + percentText(part) +
                     " above the median of " + timeText(spread.medianUs()) + ".",
                 excess, part);
    finding.costUs = excess / 10.0;
    return finding;
}

Found outliers(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    constexpr std::size_t maxNumbers = 5;
    const Outliers& outliers = graph.outliers;
    if (outliers.count == 0) {
        return std::nullopt;
    }
    std::string numbers;
    double longestUs = 0.0;
    std::vector<std::uint64_t> executions;
    for (const Outlier& outlier : outliers.longest) {
        longestUs = std::max(longestUs, outlier.us);
        executions.push_back(outlier.position);
    }
    for (const std::uint64_t position :
         std::span(executions).first(std::min(maxNumbers, executions.size()))) {
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(position + 1);
    }
    const double medianUs = graph.spread.medianUs();
    Finding finding = sentence(counted(outliers.count, "execution takes", "executions take") + " more than " +
                                   timeText(outliers.limitUs) + ", " + fixedPoint(outlierFactor, 1) +
                                   " times the median: " + (outliers.count == 1 ? "number " : "numbers ") +
                                   numbers + (outliers.count > maxNumbers ? " and others." : "."),
                               longestUs - medianUs, percentOf(longestUs - medianUs, medianUs));
    finding.costUs = outliers.excessUs / static_cast<double>(graph.spread.count);
    finding.executions = std::move(executions);
    return finding;
}

// What a run without a trend does less often than once in 200, even where its times wander.
constexpr double maxPOfTrend = 0.0005;

Found slowing(const Graph& graph, const Run& /*run*/, double threshold) {
    const std::optional<Trend> trend = trendOf(graph.executions);
    if (!trend || trend->p > maxPOfTrend) {
        return std::nullopt;
    }
    const double part = percentOf(trend->growthUs, graph.spread.medianUs());
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    Finding finding = sentence("Executions get slower over the run: by " + timeText(trend->growthUs) + ", " +
                                   percentText(part) + " of the median, from its begin to its end.",
                               trend->growthUs, part);
    finding.costUs = trend->growthUs / 2.0;
    return finding;
}

// The rules, and from what per cent on each of them speaks.
struct Rule {
    std::string_view name;
    FindingGroup group;
    bool isOnLayersTime;  ///< its cost is time of its layers, and may be part of another rule's
    double threshold;     ///< per cent
    Found (*find)(const Graph& graph, const Run& run, double threshold);
    std::string_view next;
};

constexpr auto note = FindingGroup::note;
constexpr auto everyInference = FindingGroup::everyInference;
constexpr auto once = FindingGroup::once;

constexpr Rule rules[] = {
    {"no-backend-data", note, false, 0.0, noBackendData, "Profile the run on the Murl backend."},
    {"level-basic", note, false, 0.0, levelBasic, "Profile the run at level detailed."},
    {"counts-disagree", note, false, 0.0, countsDisagree,
     "Look at the executions that the log has in the timeline (--trace)."},
    {"layers-do-not-add-up", everyInference, false, 10.0, layersDoNotAddUp,
     "Look at the parts of the accelerator in \"Where an inference goes\"."},
    {"outside-accelerator", everyInference, false, 20.0, outsideAccelerator,
     "Look at the parts beside the accelerator in \"Where an inference goes\"."},
    {"queue-wait", everyInference, false, 5.0, queueWait,
     "Look at when executions begin and end in the timeline (--trace)."},
    {"dsp-between-offloaded", everyInference, true, 5.0, dspBetweenOffloaded,
     "Look at the layers that run on the DSP in the table of ORU layers (--html)."},
    {"offload-overhead", everyInference, false, 20.0, offloadOverhead,
     "Sort the table of ORU layers (--html) by HAL time."},
    {"data-movement", everyInference, true, 10.0, dataIsMoved,
     "Look at these types in \"ORU layers by type\", and at what stands beside them (--sort order)."},
    {"dominant-layer", everyInference, true, 100.0 / 3.0, dominantLayer, "Look at its ORU layers (--html)."},
    {"spread", everyInference, false, 20.0, wideSpread, "Look at the execution times over the run (--html)."},
    {"outliers", everyInference, false, (outlierFactor - 1.0) * 100.0, outliers,
     "Look at what runs beside these executions in the timeline (--trace)."},
    {"slowing", everyInference, false, 2.0, slowing,
     "Look at the execution times over the run (--html), and measure a longer run."},
    {"warm-up", once, false, 25.0, warmUp,
     "Look at the steps and the first execution in the timeline (--trace)."},
};

constexpr std::string_view startRule = "start";
constexpr std::string_view noGraphRule = "no-graph";

// Gathers the findings of a graph in their order.
class FindingList {
public:
    FindingList(Graph& graph, const Run& run) : graph_(graph), run_(run) {}

    void fill() {
        for (const FindingGroup group : {note, everyInference, once}) {
            groups_.emplace_back();
            for (const Rule& rule : rules) {
                if (rule.group == group) {
                    add(rule);
                }
            }
        }
        std::vector<Entry>& costs = groups_[1];
        std::stable_sort(costs.begin(), costs.end(), [](const Entry& left, const Entry& right) {
            return left.finding.costUs.value_or(0.0) > right.finding.costUs.value_or(0.0);
        });
        const std::size_t others = graph_.findings.size() + groups_[0].size() + groups_[2].size();
        costs.resize(std::min(costs.size(), maxFindings - std::min(maxFindings, others)));
        tellOfSharedLayers(costs);
        for (std::vector<Entry>& group : groups_) {
            for (Entry& found : group) {
                graph_.findings.push_back(std::move(found.finding));
            }
        }
    }

private:
    struct Entry {
        const Rule* rule = nullptr;
        Finding finding;
    };

    void add(const Rule& rule) {
        if (Found found = rule.find(graph_, run_, rule.threshold)) {
            found->rule = rule.name;
            found->group = rule.group;
            found->next = rule.next;
            groups_.back().push_back({&rule, std::move(*found)});
        }
    }

    // A layer's time stands in the costliest finding that it belongs to; the others say so.
    void tellOfSharedLayers(std::vector<Entry>& costs) const {
        std::unordered_map<std::uint32_t, std::uint64_t> times;
        for (const OruLayer& layer : graph_.oruLayers) {
            times[layer.id] += layer.timeUs();
        }
        std::unordered_map<std::uint32_t, std::size_t> owners;
        for (std::size_t place = 0; place < costs.size(); ++place) {
            if (!costs[place].rule->isOnLayersTime) {
                continue;
            }
            std::vector<double> sharedUs(place);
            for (const std::uint32_t layer : costs[place].finding.oruLayers) {
                const auto [owner, isFirst] = owners.emplace(layer, place);
                if (!isFirst && owner->second < place) {
                    sharedUs[owner->second] += static_cast<double>(times[layer]);
                }
            }
            const auto most = std::max_element(sharedUs.begin(), sharedUs.end());
            if (most != sharedUs.end() && *most > 0.0) {
                tellOfShared(costs[place].finding,
                             costs[static_cast<std::size_t>(most - sharedUs.begin())].finding, *most);
            }
        }
    }

    static void tellOfShared(Finding& finding, const Finding& before, double sharedUs) {
        finding.partOf = before.rule;
        finding.text +=
            (sharedUs >= *finding.us ? " All of it is" : ' ' + timeText(sharedUs) + " of it are") +
            " part of the " + timeText(*before.us) + " above.";
    }

    Graph& graph_;
    const Run& run_;
    std::vector<std::vector<Entry>> groups_;
};

std::string stepName(const Step& step) {
    static constexpr std::pair<StepKind, std::string_view> names[] = {
        {StepKind::libraryLoad, "loading the library"},
        {StepKind::initStep, "initializing"},
        {StepKind::compose, "composing"},
        {StepKind::init, "initialization"},
        {StepKind::finalize, "finalizing"},
        {StepKind::deInit, "tearing down"}};
    const auto* const name = std::find_if(std::begin(names), std::end(names),
                                          [&step](const auto& each) { return each.first == step.kind; });
    return std::string(name->second) + (step.text.empty() ? "" : ' ' + step.text);
}

constexpr double fewInferences = 10.0;  // what a step of the start has to take to be worth a word

// The longest step of the start, against the graph that takes the longest.
void addStart(Run& run) {
    double inferenceUs = 0.0;
    for (const Graph& graph : run.graphs) {
        inferenceUs = std::max(inferenceUs, graph.spread.medianUs());
    }
    const auto isLonger = [](const Step& left, const Step& right) {
        const auto timeOf = [](const Step& step) {
            return step.kind == StepKind::deInit ? 0 : step.durationUs.value_or(0);
        };
        return timeOf(left) < timeOf(right);
    };
    const auto longest = std::max_element(run.steps.begin(), run.steps.end(), isLonger);
    if (longest == run.steps.end() || longest->kind == StepKind::deInit || inferenceUs <= 0.0) {
        return;
    }
    const auto stepUs = static_cast<double>(longest->durationUs.value_or(0));
    if (stepUs < fewInferences * inferenceUs) {
        return;
    }
    Finding finding =
        sentence("The longest step of the start, " + stepName(*longest) + ", takes " + timeText(stepUs) +
                     ", as long as " + fixedPoint(stepUs / inferenceUs, 0) + " inferences.",
                 stepUs, percentOf(stepUs, inferenceUs));
    finding.rule = startRule;
    finding.group = once;
    finding.steps = {static_cast<std::uint64_t>(longest - run.steps.begin())};
    finding.next = "Look at the steps of the start in the timeline (--trace), or on the page (--html).";
    run.findings.push_back(std::move(finding));
}

}  // namespace

std::vector<std::string_view> findingRules() {
    std::vector<std::string_view> names = {startRule, noGraphRule, mappingRule};
    std::transform(std::begin(rules), std::end(rules), std::back_inserter(names),
                   [](const Rule& rule) { return rule.name; });
    return names;
}

void addFindings(Graph& graph, const Run& run) {
    FindingList(graph, run).fill();
}

void addFindings(Run& run) {
    if (run.graphs.empty()) {
        Finding finding = sentence("No graph was executed in this log.");
        finding.rule = noGraphRule;
        finding.next = "Profile a run that executes a graph.";
        run.findings.push_back(std::move(finding));
    }
    for (Graph& graph : run.graphs) {
        addFindings(graph, run);
    }
    addStart(run);
}

}  // namespace zeb::analysis
