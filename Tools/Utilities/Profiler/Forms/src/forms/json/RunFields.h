#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <string_view>
#include <type_traits>

#include "analysis/Run.h"
#include "log/EventUnit.h"

/// The keys of a run's JSON: each struct's members in the order of the documentation, once, for writing and
/// for reading. A visitor is called with each key and member.
namespace zeb::forms {

inline constexpr std::string_view runSchema = "zeb-profile-run/1";

template <typename Enum>
struct EnumName {
    Enum value;
    std::string_view name;
};

inline constexpr EnumName<analysis::Level> levelNames[] = {
    {analysis::Level::basic, nameOf(analysis::Level::basic)},
    {analysis::Level::detailed, nameOf(analysis::Level::detailed)},
    {analysis::Level::internal, nameOf(analysis::Level::internal)}};
inline constexpr EnumName<analysis::StepKind> stepNames[] = {
    {analysis::StepKind::libraryLoad, "library-load"}, {analysis::StepKind::initStep, "init-step"},
    {analysis::StepKind::compose, "compose"},          {analysis::StepKind::init, "init"},
    {analysis::StepKind::finalize, "finalize"},        {analysis::StepKind::deInit, "de-init"}};
inline constexpr auto unitNames = [] {
    std::array<EnumName<profiling::EventUnit>, profiling::units.size()> names{};
    std::transform(profiling::units.begin(), profiling::units.end(), names.begin(),
                   [](const profiling::UnitNames& unit) {
                       return EnumName<profiling::EventUnit>{unit.unit, unit.json};
                   });
    return names;
}();

inline constexpr EnumName<analysis::LayerKind> layerKindNames[] = {{analysis::LayerKind::none, "none"},
                                                                   {analysis::LayerKind::zeb, "zeb"},
                                                                   {analysis::LayerKind::oru, "oru"}};
inline constexpr EnumName<analysis::PartKind> partKindNames[] = {
    {analysis::PartKind::inference, "inference"},
    {analysis::PartKind::backend, "backend"},
    {analysis::PartKind::accelerator, "accelerator"},
    {analysis::PartKind::krel, "krel"},
    {analysis::PartKind::dsp, "dsp"},
    {analysis::PartKind::handingOver, "handing-over"},
    {analysis::PartKind::host, "host"},
    {analysis::PartKind::queueWait, "queue-wait"},
    {analysis::PartKind::event, "event"},
    {analysis::PartKind::rest, "rest"}};

inline constexpr EnumName<analysis::FindingGroup> findingGroupNames[] = {
    {analysis::FindingGroup::note, "note"},
    {analysis::FindingGroup::everyInference, "every-inference"},
    {analysis::FindingGroup::once, "once"}};

constexpr const auto& enumNames(analysis::FindingGroup /*group*/) {
    return findingGroupNames;
}
constexpr const auto& enumNames(analysis::LayerKind /*kind*/) {
    return layerKindNames;
}
constexpr const auto& enumNames(analysis::PartKind /*kind*/) {
    return partKindNames;
}
constexpr const auto& enumNames(analysis::Level /*kind*/) {
    return levelNames;
}
constexpr const auto& enumNames(analysis::StepKind /*kind*/) {
    return stepNames;
}
constexpr const auto& enumNames(profiling::EventUnit /*kind*/) {
    return unitNames;
}

/// @return the name of a value, empty for one that is none of its kind
template <typename Enum>
std::string_view nameIn(Enum value) {
    for (const auto& [named, name] : enumNames(value)) {
        if (named == value) {
            return name;
        }
    }
    return {};
}

/// A figure that follows from others: it is written, and what is read is worked out anew.
template <typename Value>
struct Derived {
    const Value& value;
};

/// The struct as it is visited: to be read from, or to be filled.
template <typename Given, typename Wanted>
concept Is = std::same_as<std::remove_const_t<Given>, Wanted>;

template <typename Visit, Is<analysis::Event> Event>
void fieldsOf(Event& event, Visit visit) {
    visit("name", event.name);
    visit("type", event.type);
    visit("unit", event.unit);
    visit("value", event.value);
    visit("object_bytes", event.objectBytes);
    visit("events", event.events);
}

template <typename Visit, Is<analysis::Header> Header>
void fieldsOf(Header& header, Visit visit) {
    visit("time_scale", header.timeScale);
    visit("epoch_us", header.epochUs);
    visit("steady_us", header.steadyUs);
    visit("generator", header.generatorName);
    visit("generator_version", header.generatorVersion);
    visit("backend_version", header.backendVersion);
    visit("adapter_updater", header.isAdapterUpdaterLog);
}

template <typename Visit, Is<analysis::Step> Step>
void fieldsOf(Step& step, Visit visit) {
    visit("step", step.kind);
    visit("text", step.text);
    visit("start_us", step.startUs);
    visit("duration_us", step.durationUs);
    visit("events", step.events);
}

template <typename Visit, Is<analysis::OtherMethod> Method>
void fieldsOf(Method& method, Visit visit) {
    visit("method", method.method);
    visit("graph", method.graph);
    visit("count", method.count);
    visit("average_us", method.averageUs);
    visit("min_us", method.minUs);
    visit("max_us", method.maxUs);
}

template <typename Visit, Is<analysis::Executions> Executions>
void fieldsOf(Executions& executions, Visit visit) {
    visit("start_us", executions.startUs);
    visit("duration_us", executions.durationUs);
    visit("queue_wait_us", executions.queueWaitUs);
}

template <typename Visit, Is<analysis::Spread> Spread>
void fieldsOf(Spread& spread, Visit visit) {
    visit("count", spread.count);
    for (std::size_t position = 0; position < std::size(analysis::quantiles); ++position) {
        visit(analysis::quantiles[position].key, spread.quantilesUs[position]);
    }
    visit("first_us", spread.firstUs);
}

template <typename Visit, Is<analysis::Outlier> Outlier>
void fieldsOf(Outlier& outlier, Visit visit) {
    visit("execution", outlier.position);
    visit("us", outlier.us);
}

template <typename Visit, Is<analysis::Outliers> Outliers>
void fieldsOf(Outliers& outliers, Visit visit) {
    visit("limit_us", outliers.limitUs);
    visit("count", outliers.count);
    visit("excess_us", outliers.excessUs);
    visit("longest", outliers.longest);
}

template <typename Visit, Is<analysis::TypicalExecution> Execution>
void fieldsOf(Execution& execution, Visit visit) {
    visit("duration_us", execution.durationUs);
    visit("events", execution.events);
}

template <typename Visit, Is<analysis::Breakdown> Breakdown>
void fieldsOf(Breakdown& breakdown, Visit visit) {
    visit("execution_count", breakdown.executionCount);
    visit("backend_us", breakdown.backendUs);
    visit("queue_wait_us", breakdown.queueWaitUs);
    visit("input_copy_us", breakdown.inputCopyUs);
    visit("output_copy_us", breakdown.outputCopyUs);
    visit("ipc_us", breakdown.ipcUs);
    visit("accelerator_us", breakdown.acceleratorUs);
}

template <typename Visit, Is<analysis::OruLayer> Layer>
void fieldsOf(Layer& layer, Visit visit) {
    visit("id", layer.id);
    visit("type", layer.type);
    visit("type_name", layer.typeName);
    visit("offloaded", layer.isOffloaded);
    visit("linked", layer.isLinked);
    visit("loopback", layer.isLoopbackEnabled);
    visit("merged_group", layer.mergedGroup);
    visit("executions", layer.executions);
    visit("average_us", layer.averageUs);
    visit("total_us", layer.totalUs);
    visit("dsp_cycles", layer.dspCycles);
    visit("total_dsp_cycles", layer.totalDspCycles);
    visit("hal_us", layer.halUs);
    visit("driver_us", layer.driverUs);
    visit("cache_flush_us", layer.cacheFlushUs);
    visit("krel_exec_us", layer.krelExecUs);
    visit("nodes", layer.nodes);
    visit("core_cycles", layer.coreCycles);
    visit("core_us", layer.coreUs);
    visit("time_us", Derived<std::uint64_t>{layer.timeUs()});
}

template <typename Visit, Is<analysis::ZebLayer> Layer>
void fieldsOf(Layer& layer, Visit visit) {
    visit("name", layer.name);
    visit("dsp_us", layer.dspUs);
    visit("krel_us", layer.krelUs);
    visit("time_us", Derived<std::uint64_t>{layer.timeUs()});
    visit("oru_layers", layer.oruLayers);
}

template <typename Visit, Is<analysis::LayerType> Type>
void fieldsOf(Type& type, Visit visit) {
    visit("name", type.name);
    visit("dsp_layers", type.dspLayers);
    visit("krel_layers", type.krelLayers);
    visit("time_us", type.timeUs);
}

template <typename Visit, Is<analysis::LayerSums> Sums>
void fieldsOf(Sums& sums, Visit visit) {
    visit("kind", sums.kind);
    visit("dsp_us", sums.dspUs);
    visit("krel_us", sums.krelUs);
    visit("time_us", Derived<std::uint64_t>{sums.timeUs()});
    visit("handing_over_us", sums.handingOverUs);
}

template <typename Visit, Is<analysis::Part> Part>
void fieldsOf(Part& part, Visit visit) {
    visit("name", part.name);
    visit("us", part.us);
    visit("kind", part.kind);
    visit("note", part.note);
    visit("parts", part.parts);
}

template <typename Visit, Is<analysis::Finding> Finding>
void fieldsOf(Finding& finding, Visit visit) {
    visit("rule", finding.rule);
    visit("group", finding.group);
    visit("text", finding.text);
    visit("us", finding.us);
    visit("percent", finding.percent);
    visit("cost_us", finding.costUs);
    visit("oru_layers", finding.oruLayers);
    visit("executions", finding.executions);
    visit("steps", finding.steps);
    visit("part_of", finding.partOf);
    visit("next", finding.next);
}

template <typename Visit, Is<analysis::Graph> Graph>
void fieldsOf(Graph& graph, Visit visit) {
    visit("name", graph.name);
    visit("total_us", Derived<std::uint64_t>{graph.totalUs});
    visit("spread", graph.spread);
    visit("outliers", Derived<analysis::Outliers>{graph.outliers});
    visit("breakdown", graph.breakdown);
    visit("inference", Derived<analysis::Part>{graph.inference});
    visit("layers", Derived<analysis::LayerSums>{graph.layers});
    visit("finalize_us", graph.finalizeUs);
    visit("dsp_clock_hz", graph.dspClockHz);
    visit("krel_clock_hz", graph.krelClockHz);
    visit("findings", graph.findings);
    visit("zeb_layers", graph.zebLayers);
    visit("layer_types", graph.layerTypes);
    visit("oru_layers", graph.oruLayers);
    visit("average", graph.average);
    visit("shortest", graph.shortest);
    visit("longest", graph.longest);
    visit("executions", graph.executions);
}

template <typename Visit, Is<analysis::Run> Run>
void fieldsOf(Run& run, Visit visit) {
    visit("log", run.logFile);
    visit("run_id", run.runId);
    visit("labels", run.labels);
    visit("header", run.header);
    visit("level", run.level);
    visit("asynchronous", run.isAsync);
    visit("steps", run.steps);
    visit("init_us", run.initUs);
    visit("graphs", run.graphs);
    visit("other_methods", run.otherMethods);
    visit("findings", run.findings);
}

}  // namespace zeb::forms
