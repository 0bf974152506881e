#pragma once

#include <cstdint>
#include <string>

#include "console/CommandManual.h"

namespace zeb::manual {

/// What a shell can offer as the value of an option, besides the values that have names.
enum class ValueKind : std::uint8_t { none, free, file, directory };

/// What the form of a value says, as in " FILE", "[=DIR]" or " LOG...".
struct ValueForm {
    ValueKind kind = ValueKind::none;
    bool isOptional = false;    ///< may be left out, and else stands behind a "="
    bool isRepeatable = false;  ///< the option may be given again
    std::string label;          ///< "FILE"
};

ValueForm valueFormOf(const console::ManualOption& option);

/// @return the first sentence of an option's text, up to a colon, a semicolon or a bracket, without its full
/// stop
std::string shortText(const console::ManualOption& option);

}  // namespace zeb::manual
