#include "manual/ValueKind.h"

#include <algorithm>
#include <string_view>

namespace zeb::manual {

namespace {

constexpr std::string_view fileWords[] = {"FILE", "LOG", "PATH"};

bool isLetter(char character) {
    return character >= 'A' && character <= 'Z';
}

ValueKind kindOf(std::string_view label) {
    while (!label.empty()) {
        const auto end = std::find_if_not(label.begin(), label.end(), isLetter);
        const std::string_view word = label.substr(0, static_cast<std::size_t>(end - label.begin()));
        if (std::find(std::begin(fileWords), std::end(fileWords), word) != std::end(fileWords)) {
            return ValueKind::file;
        }
        if (word == "DIR") {
            return ValueKind::directory;
        }
        label.remove_prefix(std::min(word.size() + 1, label.size()));
    }
    return ValueKind::free;
}

}  // namespace

ValueForm valueFormOf(const console::ManualOption& option) {
    if (option.valueForm.empty()) {
        return {};
    }
    ValueForm form;
    form.isOptional = option.valueForm.starts_with('[');
    form.isRepeatable = option.valueForm.ends_with("...");
    form.label = option.valueForm;
    std::erase_if(form.label, [](char character) { return character == '.' || character == ' '; });
    if (form.isOptional) {
        form.label = form.label.substr(2, form.label.size() - 3);  // of "[=N]"
    }
    form.kind = kindOf(form.label);
    return form;
}

std::string shortText(const console::ManualOption& option) {
    std::string text = option.text;
    std::replace(text.begin(), text.end(), '\n', ' ');
    text = text.substr(0, std::min({text.find(". "), text.find(": "), text.find("; "), text.find(" (")}));
    return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

}  // namespace zeb::manual
