#include "reports/MethodForms.h"

#include "log/Methods.h"

namespace zeb::profiling {

constinit const MethodForm executeForm = {executeMethod,
                                          nullptr,
                                          {"Execute Stats (Average):", 24},
                                          {"Execute Stats (Min):", 24},
                                          {"Execute Stats (Max):", 24},
                                          methodOf(schema::MethodType::Execute).csvName,
                                          "EXECUTE",
                                          false};

constinit const MethodForm applyBinarySectionForm = {applyBinarySectionMethod,
                                                     &EventStore::hasApplyBinarySection,
                                                     {"ApplyBinarySection Stats (Average):", 35},
                                                     {"ApplyBinarySection Stats (Min):", 35},
                                                     {"ApplyBinarySection Stats (Max):", 35},
                                                     methodOf(schema::MethodType::ApplyBinarySection).csvName,
                                                     "APPLYBINARY",
                                                     false};

constinit const MethodForm finalizeAfterTensorUpdatesForm = {
    finalizeAfterTensorUpdatesMethod,
    &EventStore::hasFinalizeAfterTensorUpdates,
    {"FinalizeAfterTensorUpdates Stats (Average):", 45},
    {"FinalizeAfterTensorUpdates Stats (Min):", 40},
    {"FinalizeAfterTensorUpdates Stats (Max):", 40},
    methodOf(schema::MethodType::FinalizeAfterTensorUpdates).csvName,
    "FINALIZE_AFTER_TENSOR_UPDATES",
    true};

}  // namespace zeb::profiling
