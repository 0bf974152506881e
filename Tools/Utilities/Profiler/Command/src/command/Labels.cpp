#include "command/Labels.h"

namespace zeb::command {

std::optional<std::string> addLabel(Labels& labels, std::string_view given) {
    const std::size_t equals = given.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        return "\"" + std::string(given) + "\" is no KEY=VALUE";
    }
    const std::string value(given.substr(equals + 1));
    const auto [label, isNew] = labels.try_emplace(std::string(given.substr(0, equals)), value);
    if (!isNew && label->second != value) {
        return "the label \"" + label->first + "\" has two values, \"" + label->second + "\" and \"" + value +
               "\"";
    }
    return std::nullopt;
}

}  // namespace zeb::command
