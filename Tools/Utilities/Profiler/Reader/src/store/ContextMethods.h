#pragma once

#include <string_view>

#include "log/ProfileLog_generated.h"

namespace zeb::profiling {

/// A method that retrieves the binary of a context, or tells its size.
struct ContextMethod {
    schema::MethodType method;
    std::string_view key;    ///< in the store, and the message in a CSV report
    std::string_view label;  ///< on the console
};

inline constexpr ContextMethod contextMethods[] = {
    {schema::MethodType::ContextGetBinarySize, "CONTEXT GET BINARY SIZE", "Get Binary Size"},
    {schema::MethodType::ContextGetBinary, "CONTEXT GET BINARY", "Get Binary"},
    {schema::MethodType::ContextGetBinarySectionSize, "CONTEXT GET BINARY SECTION SIZE",
     "Get Binary Section Size"},
};

/// @return the key of a method of the list, empty for any other
constexpr std::string_view contextKey(schema::MethodType method) {
    for (const ContextMethod& row : contextMethods) {
        if (row.method == method) {
            return row.key;
        }
    }
    return {};
}

/// @return the label of a method of the list by its key, empty for any other
constexpr std::string_view contextLabel(std::string_view key) {
    for (const ContextMethod& row : contextMethods) {
        if (row.key == key) {
            return row.label;
        }
    }
    return {};
}

}  // namespace zeb::profiling
