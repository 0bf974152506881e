#pragma once

#include <cstddef>
#include <string_view>

namespace zeb::profiling {

/// The head of a report's section: a title, and a line of "-" below it. The width is the section's own and
/// seldom the title's.
struct SectionHead {
    std::string_view title;
    std::size_t underline;
};

/// A head whose line is as wide as its title.
constexpr SectionHead fittingHead(std::string_view title) {
    return {title, title.size()};
}

/// The heads of all sections but those of a method's statistics (`MethodForms.h`).
namespace heads {

inline constexpr SectionHead overview{"Zeb Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:", 60};
inline constexpr SectionHead init{"Init Stats:", 11};
inline constexpr SectionHead composeGraphs{"Compose Graphs Stats:", 14};
inline constexpr SectionHead finalize{"Finalize Stats:", 15};
inline constexpr SectionHead deInit{"De-Init Stats:", 14};
inline constexpr SectionHead contextRetrieval{"Context Retrieval Stats:", 24};
inline constexpr SectionHead contextSectionAverage{"Context Section Retrieval Stats (Average):", 47};
inline constexpr SectionHead contextSectionMin{"Context Section Retrieval Stats (Min):", 42};
inline constexpr SectionHead contextSectionMax{"Context Section Retrieval Stats (Max):", 42};
inline constexpr SectionHead executeOverall{"Execute Stats (Overall):", 24};
inline constexpr SectionHead totalInferenceTime{"Total Inference Time: ", 21};
inline constexpr SectionHead libLoad{"Dynamic Lib Load Stats:", 24};
inline constexpr SectionHead updateBinarySection{"UpdateBinarySection Stats:", 32};
inline constexpr SectionHead backendExecution{"Execution Stats (Average):", 21};
inline constexpr SectionHead oruLayers = fittingHead("ORU Per-layer Stats:");
inline constexpr SectionHead zebLayers = fittingHead("ZEB Per-layer Stats:");
inline constexpr SectionHead layerMapping = fittingHead("ZEB Layer - ORU Layer(s) mapping:");

}  // namespace heads

}  // namespace zeb::profiling
