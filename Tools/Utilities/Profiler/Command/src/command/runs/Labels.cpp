#include "command/runs/Labels.h"

#include "analysis/LogText.h"

namespace zeb::command {

namespace {

std::optional<std::string> add(Labels& labels, const std::string& key, const std::string& value) {
    const auto [label, isNew] = labels.try_emplace(key, value);
    if (isNew || label->second == value) {
        return std::nullopt;
    }
    return "the label \"" + key + "\" has two values, \"" + label->second + "\" and \"" + value + '"';
}

}  // namespace

std::optional<std::string> addLabel(Labels& labels, std::string_view given) {
    const std::size_t equals = given.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        return '"' + analysis::cutText(given) + "\" is no KEY=VALUE";
    }
    return add(labels, analysis::cutName(given.substr(0, equals)),
               analysis::cutName(given.substr(equals + 1)));
}

std::optional<std::string> addLabels(Labels& labels, const Labels& more) {
    for (const auto& [key, value] : more) {
        if (auto trouble = add(labels, key, value)) {
            return trouble;
        }
    }
    return std::nullopt;
}

console::ManualOption labelOption(const std::string& whose) {
    return {"--label", " KEY=VALUE", "A label of " + whose + ", such as site=lab. May be given again."};
}

void addLabelOf(const Given& given, Labels& labels) {
    if (const auto trouble = addLabel(labels, given.value)) {
        throw wrongUsage(given.name, *trouble);
    }
}

}  // namespace zeb::command
