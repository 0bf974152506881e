#pragma once

#include <iterator>
#include <string_view>

#include "reports/SectionHeads.h"
#include "store/MethodStatistics.h"

namespace zeb::profiling {

/// How the generic reports show a method that has statistics.
struct MethodForm {
    MeasuredMethod method;
    SectionHead average;  ///< of its sections on the console
    SectionHead min;
    SectionHead max;
    std::string_view csvMessage;       ///< of its own rows
    std::string_view csvEventMessage;  ///< of the rows of its events
    bool csvShowsMessage;              ///< a record shows its own message in place of the graph's name
};

inline constexpr MethodForm executeForm = {&MeasuredMethods::execute,
                                           {"Execute Stats (Average):", 24},
                                           {"Execute Stats (Min):", 24},
                                           {"Execute Stats (Max):", 24},
                                           "EXECUTE",
                                           "EXECUTE",
                                           false};

/// The others, whose sections are all made in one way.
inline constexpr MethodForm otherMethodForms[] = {
    {&MeasuredMethods::applyBinarySection,
     {"ApplyBinarySection Stats (Average):", 35},
     {"ApplyBinarySection Stats (Min):", 35},
     {"ApplyBinarySection Stats (Max):", 35},
     "APPLY BINARY SECTION",
     "APPLYBINARY",
     false},
    {&MeasuredMethods::finalizeAfterTensorUpdates,
     {"FinalizeAfterTensorUpdates Stats (Average):", 45},
     {"FinalizeAfterTensorUpdates Stats (Min):", 40},
     {"FinalizeAfterTensorUpdates Stats (Max):", 40},
     "FINALIZE AFTER TENSOR UPDATES",
     "FINALIZE_AFTER_TENSOR_UPDATES",
     true},
};
static_assert(std::size(otherMethodForms) + 1 == std::size(measuredMethods));

}  // namespace zeb::profiling
