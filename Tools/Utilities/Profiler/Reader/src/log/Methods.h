#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "log/ProfileLog_generated.h"

namespace zeb::profiling {

/// Where a timeline has a method's messages.
enum class MethodGroup : std::uint8_t { setUp, executions, others, tearDown };

/// What the text of a method's message is.
enum class MethodText : std::uint8_t { graph, other };

/// What a run tells of a method's messages besides the reports.
enum class MethodPart : std::uint8_t {
    executions,  ///< each, graph by graph
    steps,       ///< each
    statistics,  ///< average, shortest and longest, graph by graph
    none,
};

/// A method of the schema, and what all that name it have to know.
struct Method {
    schema::MethodType type;
    std::string_view name;     ///< in a timeline, and among the statistics of a run
    std::string_view csvName;  ///< of its rows in a CSV report, empty where it has none
    MethodGroup group;
    MethodText text;
    MethodPart part;
};

/// All methods, by their numbers.
inline constexpr auto methods = [] {
    using enum schema::MethodType;
    using enum MethodGroup;
    using Text = MethodText;
    using Part = MethodPart;
    return std::to_array<Method>({
        {Execute, "execute", "EXECUTE", executions, Text::graph, Part::executions},
        {Finalize, "finalize", "FINALIZE", setUp, Text::graph, Part::steps},
        {ExecuteAsync, "execute asynchronously", "EXECUTE", executions, Text::graph, Part::executions},
        {Init, "init", "INIT", setUp, Text::other, Part::steps},
        {DeInit, "de-init", "DE-INIT", tearDown, Text::other, Part::steps},
        {InitStep, "init step", "", setUp, Text::other, Part::steps},
        {ComposeGraphs, "compose", "COMPOSE GRAPHS", setUp, Text::graph, Part::steps},
        {ExecuteOverall, "execute overall", "EXECUTE IPS", others, Text::other, Part::none},
        {GraphEvents, "graph events", "", others, Text::graph, Part::none},
        {DynamicLibLoad, "load library", "DLOPEN LATENCY", setUp, Text::other, Part::steps},
        {ApplyBinarySection, "apply binary section", "APPLY BINARY SECTION", others, Text::graph,
         Part::statistics},
        {ApplyBinarySectionAlternate, "apply binary section", "APPLY BINARY SECTION", others, Text::graph,
         Part::statistics},
        {ContextGetBinarySize, "get binary size", "CONTEXT GET BINARY SIZE", setUp, Text::other, Part::none},
        {ContextGetBinary, "get binary", "CONTEXT GET BINARY", setUp, Text::other, Part::none},
        {ContextGetBinarySectionSize, "get binary section size", "CONTEXT GET BINARY SECTION SIZE", setUp,
         Text::other, Part::none},
        {FinalizeAfterTensorUpdates, "finalize after tensor updates", "FINALIZE AFTER TENSOR UPDATES", others,
         Text::graph, Part::statistics},
        {UpdateBinarySection, "update binary section", "UPDATE BINARY SECTION", others, Text::other,
         Part::statistics},
    });
}();

inline constexpr std::size_t firstMethod = 1;

/// @return null for a number that no method has
constexpr const Method* findMethod(schema::MethodType type) {
    const auto position = static_cast<std::size_t>(static_cast<std::uint8_t>(type)) - firstMethod;
    return position < methods.size() ? &methods[position] : nullptr;
}

constexpr const Method& methodOf(schema::MethodType type) {
    return *findMethod(type);
}

static_assert(static_cast<std::size_t>(schema::MethodType::MIN) + firstMethod == 1 &&
                  static_cast<std::size_t>(schema::MethodType::MAX) == methods.size(),
              "all methods of the schema are here");
static_assert(std::all_of(methods.begin(), methods.end(),
                          [](const Method& method) { return findMethod(method.type) == &method; }),
              "they stand by their numbers, without a gap");

}  // namespace zeb::profiling
