#include "viewer/ViewerArgs.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace zeb::viewer {

namespace {

constexpr std::string_view endOfOptions = "--";

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool looksLikeOption(const std::string& text) {
    return text.size() > 1 && text.front() == '-' && !isDigit(text[1]);
}

}  // namespace

ViewerArgs::ViewerArgs(const std::vector<std::string>& arguments) {
    bool optionsEnded = false;
    for (const std::string& text : arguments) {
        if (!optionsEnded && text == endOfOptions) {
            optionsEnded = true;
        } else {
            arguments_.push_back({text, !optionsEnded && looksLikeOption(text)});
        }
    }
}

std::string ViewerArgs::Argument::name() const {
    return isOption ? text.substr(0, text.find('=')) : text;
}

commandline2::ArgLookupResult ViewerArgs::lookup(const std::string& name) {
    askedNames_.insert(name);
    commandline2::ArgLookupResult result;
    for (std::size_t position = 0; position < arguments_.size(); ++position) {
        Argument& argument = arguments_[position];
        if (argument.isOption && argument.name() == name) {
            argument.found = true;
            result.found = true;
            takeValues(position, result);
        }
    }
    return result;
}

void ViewerArgs::takeValues(std::size_t position, commandline2::ArgLookupResult& result) {
    const auto take = [&result](const std::string& value) {
        result.values.push_back(std::make_shared<const std::string>(value));
    };
    const Argument& option = arguments_[position];
    if (option.hasValue()) {
        take(option.text.substr(option.name().size() + 1));
        return;
    }
    while (++position < arguments_.size() && !arguments_[position].isOption) {
        arguments_[position].found = true;
        take(arguments_[position].text);
    }
}

std::optional<ViewerArgs::Leftover> ViewerArgs::firstLeftover() const {
    const auto leftover = std::find_if(arguments_.begin(), arguments_.end(),
                                       [](const Argument& argument) { return !argument.found; });
    if (leftover == arguments_.end()) {
        return std::nullopt;
    }
    return Leftover{leftover->name(), leftover->isOption};
}

}  // namespace zeb::viewer
