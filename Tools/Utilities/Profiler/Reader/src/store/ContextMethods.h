#pragma once

#include <string_view>

#include "log/Methods.h"

namespace zeb::profiling {

/// A method that retrieves the binary of a context, or tells its size. Its key in the store is its name in a
/// CSV report.
struct ContextMethod {
    schema::MethodType method;
    std::string_view label;  ///< on the console
};

inline constexpr ContextMethod contextMethods[] = {
    {schema::MethodType::ContextGetBinarySize, "Get Binary Size"},
    {schema::MethodType::ContextGetBinary, "Get Binary"},
    {schema::MethodType::ContextGetBinarySectionSize, "Get Binary Section Size"},
};

/// @return the label of a method of the list by its key, empty for any other
constexpr std::string_view contextLabel(std::string_view key) {
    for (const ContextMethod& row : contextMethods) {
        if (methodOf(row.method).csvName == key) {
            return row.label;
        }
    }
    return {};
}

}  // namespace zeb::profiling
