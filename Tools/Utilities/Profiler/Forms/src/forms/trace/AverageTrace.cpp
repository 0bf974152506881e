#include "forms/trace/AverageTrace.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

namespace zeb::forms {

namespace {

using analysis::Graph;

// An average inference of a graph: its layers end to end in their order, which nobody has measured.
class AverageInference {
public:
    AverageInference(TraceFile& file, std::uint64_t process, std::uint64_t startUs)
        : file_(file), process_(process), atUs_(std::min(startUs, largestExactNumber)) {}

    /// @param graph has layers
    void add(const Graph& graph, bool isOnlyGraph) {
        const std::string of =
            isOnlyGraph ? std::string() : " of " + profiling::cutInMiddle(graph.name, maxTraceText / 2);
        file_.nameProcess(process_, "average inference" + of + " (laid out, not measured)");
        if (graph.layers.kind == analysis::LayerKind::zeb) {
            file_.nameTrack({process_, zebTrack}, "ZEB layers");
        }
        file_.nameTrack({process_, dspTrack}, "DSP");
        file_.nameTrack({process_, krelTrack}, "Krel");
        forEachLayer(graph, [this](const auto& layer) { addLayer(layer); });
        if (leftOut_ > 0) {
            file_.labelProcess(process_, std::to_string(leftOut_) + " layers left out: times too large");
        }
    }

private:
    static constexpr std::uint64_t zebTrack = 1;
    static constexpr std::uint64_t dspTrack = 2;
    static constexpr std::uint64_t krelTrack = 3;
    static constexpr std::size_t maxShownIds = 32;

    void addLayer(const analysis::ZebLayer& layer) {
        const auto us = room(layer.dspUs, layer.krelUs);
        if (!us) {
            return;
        }
        file_.addSlice(layer.name, {process_, zebTrack}, {atUs_, atUs_ + *us}, [&](JsonWriter& arguments) {
            arguments.member("placed", "laid out");
            arguments.member("dspUs", layer.dspUs);
            arguments.member("krelUs", layer.krelUs);
            arguments.member("oruLayerCount", std::uint64_t{layer.oruLayers.size()});
            arguments.key("oruLayers");
            arguments.beginList();
            for (const std::uint32_t id :
                 std::span(layer.oruLayers).first(std::min(maxShownIds, layer.oruLayers.size()))) {
                arguments.value(id);
            }
            arguments.endList();
        });
        const auto addNothing = [](JsonWriter& arguments) { arguments.member("placed", "laid out"); };
        addPart(layer.name, dspTrack, layer.dspUs, addNothing);
        addPart(layer.name, krelTrack, layer.krelUs, addNothing);
    }

    void addLayer(const analysis::OruLayer& layer) {
        if (!room(layer.timeUs(), 0)) {
            return;
        }
        addPart(layer.typeName + " " + std::to_string(layer.id), layer.isOffloaded ? krelTrack : dspTrack,
                layer.timeUs(), [&](JsonWriter& arguments) {
                    arguments.member("placed", "laid out");
                    arguments.member("oruLayer", std::uint64_t{layer.id});
                    arguments.member("type", traceText(layer.typeName));
                });
    }

    template <typename AddArguments>
    void addPart(std::string_view name, std::uint64_t track, std::uint64_t us, AddArguments addArguments) {
        if (us > 0) {
            file_.addSlice(name, {process_, track}, {atUs_, atUs_ + us}, addArguments);
        }
        atUs_ += us;
    }

    // The sum of two times, if there is room for it; else the layer is left out.
    std::optional<std::uint64_t> room(std::uint64_t oneUs, std::uint64_t otherUs) {
        const std::uint64_t left = largestExactNumber - atUs_;
        if (oneUs > left || otherUs > left - oneUs) {
            ++leftOut_;
            return std::nullopt;
        }
        return oneUs + otherUs;
    }

    TraceFile& file_;
    std::uint64_t process_;
    std::uint64_t atUs_;
    std::uint64_t leftOut_ = 0;
};

}  // namespace

void addAverages(TraceFile& file, const analysis::Run& run, std::uint64_t firstProcess,
                 std::uint64_t startUs) {
    for (std::size_t position = 0; position < run.graphs.size(); ++position) {
        const Graph& graph = run.graphs[position];
        if (graph.layers.kind != analysis::LayerKind::none) {
            AverageInference(file, firstProcess + position, startUs).add(graph, run.graphs.size() == 1);
        }
    }
}

}  // namespace zeb::forms
