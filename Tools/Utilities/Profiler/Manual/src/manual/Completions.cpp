#include "manual/Completions.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "manual/ValueKind.h"

namespace zeb::manual {

namespace {

using console::CommandManual;
using console::ManualOption;

std::string joined(const std::vector<std::string>& words, std::string_view between) {
    std::string text;
    for (const std::string& word : words) {
        text.append(&word == words.data() ? "" : between).append(word);
    }
    return text;
}

// What a text has of the characters gets the prefix in front.
std::string escaped(std::string_view text, std::string_view characters, std::string_view prefix) {
    std::string result;
    for (const char character : text) {
        result.append(characters.find(character) == std::string_view::npos ? "" : prefix) += character;
    }
    return result;
}

// A text between single quotes of a shell.
std::string quotable(const std::string& text) {
    std::string result;
    for (const char character : text) {
        result += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return result;
}

std::string functionName(const CommandManual& manual) {
    std::string name = "_" + manual.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

// What bash does for the value of an option. The default of the shell is file names.
std::string bashAction(const ManualOption& option, ValueKind kind) {
    if (!option.values.empty()) {
        const std::string words =
            "COMPREPLY=($(compgen -W '" + joined(option.values, " ") + "' -- \"$current\"))";
        return kind == ValueKind::file ? words : "compopt +o default; " + words;
    }
    switch (kind) {
        case ValueKind::directory:
            return "compopt +o default -o dirnames";
        case ValueKind::free:
            return "compopt +o default";
        case ValueKind::file:
        case ValueKind::none:
            break;
    }
    return ":";
}

std::string zshAction(const ManualOption& option, ValueKind kind) {
    const std::string names = joined(option.values, " ");
    switch (kind) {
        case ValueKind::file:
            return names.empty() ? "_files" : "{compadd -- " + names + "; _files}";
        case ValueKind::directory:
            return "_path_files -/";
        case ValueKind::free:
        case ValueKind::none:
            break;
    }
    return names.empty() ? " " : "(" + names + ")";
}

std::string zshSpec(const ManualOption& option) {
    const ValueForm form = valueFormOf(option);
    std::string spec = form.isRepeatable ? "*" : "";
    spec += option.name;
    spec += form.kind == ValueKind::none ? "" : form.isOptional ? "=-" : "=";
    spec += "[" + escaped(shortText(option), "[]:\\", "\\") + "]";
    if (form.kind != ValueKind::none) {
        spec += (form.isOptional ? "::" : ":") + escaped(form.label, ":\\", "\\") + ":" +
                zshAction(option, form.kind);
    }
    return "'" + quotable(spec) + "'";
}

std::string fishValue(const ManualOption& option) {
    const ValueForm form = valueFormOf(option);
    const std::string names =
        option.values.empty() ? "" : " -a '" + quotable(joined(option.values, " ")) + "'";
    const std::string required = form.isOptional ? "" : " -r";
    switch (form.kind) {
        case ValueKind::none:
            return "";
        case ValueKind::free:
            return required + " -f" + names;
        case ValueKind::file:
            return required + " -F" + names;
        case ValueKind::directory:
            return required + " -f -a '(__fish_complete_directories)'";
    }
    return "";
}

}  // namespace

std::string bashCompletion(const CommandManual& manual) {
    const std::string function = functionName(manual);
    std::vector<std::string> names;
    std::vector<std::string> withValue;  // in the next word
    std::string cases;
    for (const ManualOption& option : manual.options) {
        names.push_back(option.name);
        const ValueForm form = valueFormOf(option);
        if (form.kind != ValueKind::none) {
            cases += "        " + option.name + ")\n            " + bashAction(option, form.kind) +
                     "\n            return ;;\n";
            if (!form.isOptional) {
                withValue.push_back(option.name);
            }
        }
    }
    return "# bash completion of " + manual.name + "\n\n" + function + R"(() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} option= word
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word != -- ]] || return
    done
    # A "=" is a word of its own.
    if [[ $current == = ]]; then
        option=$previous
        current=
    elif [[ $previous == = ]]; then
        option=${COMP_WORDS[COMP_CWORD-2]}
    else
        case $previous in
            )" +
           joined(withValue, " | ") +
           R"() option=$previous ;;
        esac
    fi
    case $option in
)" + cases +
           R"(    esac
    [[ $current != -* ]] || COMPREPLY=($(compgen -W ')" +
           joined(names, " ") + R"(' -- "$current"))
}
complete -o default -F )" +
           function + " " + manual.name + "\n";
}

std::string zshCompletion(const CommandManual& manual) {
    std::string script = "#compdef " + manual.name + "\n\n_arguments -S \\\n";
    for (const ManualOption& option : manual.options) {
        script += "    " + zshSpec(option) + " \\\n";
    }
    return script + "    '*:file:_files'\n";
}

std::string fishCompletion(const CommandManual& manual) {
    std::string script = "# fish completion of " + manual.name + "\n\n";
    for (const ManualOption& option : manual.options) {
        script += "complete -c " + manual.name + " -l " + option.name.substr(2) + fishValue(option) +
                  " -d '" + escaped(shortText(option), "'\\", "\\") + "'\n";
    }
    return script;
}

}  // namespace zeb::manual
