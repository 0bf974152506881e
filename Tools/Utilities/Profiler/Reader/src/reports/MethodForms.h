#pragma once

#include <iterator>
#include <string_view>

#include "reports/SectionHeads.h"
#include "store/EventStore.h"

namespace zeb::profiling {

/// How the generic reports show a method that has statistics.
struct MethodForm {
    MeasuredMethod method;
    bool EventStore::*isStored;  ///< such a message was; null for executions, whose sections always show
    SectionHead average;         ///< of its sections on the console
    SectionHead min;
    SectionHead max;
    std::string_view csvMessage;       ///< of its own rows
    std::string_view csvEventMessage;  ///< of the rows of its events
    bool csvShowsMessage;              ///< a record shows its own message in place of the graph's name
};

extern const MethodForm executeForm;
extern const MethodForm applyBinarySectionForm;
extern const MethodForm finalizeAfterTensorUpdatesForm;

inline constexpr const MethodForm* methodForms[] = {&executeForm, &applyBinarySectionForm,
                                                    &finalizeAfterTensorUpdatesForm};
static_assert(std::size(methodForms) == std::size(measuredMethods), "each has a form");

/// One of the statistics of a method: the head of its section, and its records.
struct StatisticForm {
    SectionHead MethodForm::*head;
    StatisticsList EventStore::*MeasuredMethod::*records;
};
inline constexpr StatisticForm averageForm = {&MethodForm::average, &MeasuredMethod::average};
inline constexpr StatisticForm minForm = {&MethodForm::min, &MeasuredMethod::min};
inline constexpr StatisticForm maxForm = {&MethodForm::max, &MeasuredMethod::max};

}  // namespace zeb::profiling
