#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "analysis/Labels.h"
#include "command/CommandLine.h"
#include "console/CommandManual.h"

namespace zeb::command {

using analysis::Labels;

/// Adds a label that is given as KEY=VALUE; the value may be empty.
/// @return what is wrong with it, nothing once it is added: it is none, or its key has another value
std::optional<std::string> addLabel(Labels& labels, std::string_view given);

/// Adds labels to those that are there.
/// @return what is wrong with them: a key has another value
std::optional<std::string> addLabels(Labels& labels, const Labels& more);

/// The option --label.
/// @param whose they are, as in "A label of the run"
console::ManualOption labelOption(const std::string& whose);
/// @throws Failure
void addLabelOf(const Given& given, Labels& labels);

}  // namespace zeb::command
