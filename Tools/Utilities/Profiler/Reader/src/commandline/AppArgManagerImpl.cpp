#include "commandline/AppArgManagerImpl.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace zeb::commandline2 {

namespace {

constexpr std::size_t labelWidth = 24;
constexpr std::size_t indentWidth = 2;

std::string rowLabel(const std::string& label) {
    std::string row(indentWidth, ' ');
    row += label;
    if (row.size() < labelWidth) {
        row.resize(labelWidth, ' ');
    }
    return row;
}

// A text that ends in a line feed has no further line behind it, and an empty text has none at all.
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

void printRow(std::ostream& out, const std::string& label, const std::string& description) {
    const std::string nextRow = "\n" + std::string(labelWidth, ' ');
    out << rowLabel(label);
    // The row label holds its indent already. It is counted once more here, so that at least two blanks
    // stand between label and text.
    bool wrap = indentWidth + label.size() + indentWidth > labelWidth;
    for (const std::string& line : linesOf(description)) {
        out << (wrap ? nextRow : "") << line;
        wrap = true;
    }
    out << '\n';
}

std::string errorLine(const std::string& text) {
    return "ERROR:\t" + text + "\n";
}

}  // namespace

AppArgManagerImpl::AppArgManagerImpl(bool handleHelpVersion)
    : appInfo_("", "", ""), handleHelpVersion_(handleHelpVersion) {}

std::int32_t AppArgManagerImpl::parse(ParsedArgs& parsedArgs) {
    if (handleHelpVersion_ && showHelpOrVersion(parsedArgs)) {
        return parseHelpShown;
    }
    for (auto& [name, option] : optionTable_) {
        const ArgLookupResult given = parsedArgs.lookup(name);
        if (given.found) {
            option.apply(given.values);
        }
    }
    return validate() ? parseGood : parseInvalid;
}

bool AppArgManagerImpl::showHelpOrVersion(ParsedArgs& parsedArgs) const {
    if (parsedArgs.lookup("--help").found) {
        printUsage(std::cerr);
        return true;
    }
    if (parsedArgs.lookup("--version").found) {
        appInfo_.printMessage(appInfo_.version());
        return true;
    }
    return false;
}

void AppArgManagerImpl::addValueOption(const std::string& name, OptionHandler handler,
                                       const std::string& description, bool required, bool hidden) {
    addOption(Option(name, std::move(handler), description, true, required, hidden));
}

void AppArgManagerImpl::addFlagOption(const std::string& name, bool* flag, const std::string& description,
                                      bool required, bool hidden) {
    const auto setFlag = [flag](const OptionValues&) {
        *flag = true;
        return true;
    };
    addOption(Option(name, setFlag, description, false, required, hidden));
}

void AppArgManagerImpl::addOption(const Option& option) {
    optionTable_.emplace(option.name(), option);
    optionOrder_.push_back(option.name());
}

bool AppArgManagerImpl::isOptionSet(const std::string& name) const {
    const auto found = optionTable_.find(name);
    return found != optionTable_.end() && found->second.wasSet();
}

void AppArgManagerImpl::addValidator(ArgValidator validator) {
    validators_.push_back(std::move(validator));
}

bool AppArgManagerImpl::validate() const {
    std::string errors = missingRequiredText();
    for (const ArgValidator& validator : validators_) {
        const std::string error = validator();
        if (!error.empty()) {
            errors += errorLine(error);
        }
    }
    if (errors.empty()) {
        return true;
    }
    printUsage(std::cerr);
    std::cerr << "\nArguments Invalid:\n" << errors;
    return false;
}

std::string AppArgManagerImpl::missingRequiredText() const {
    std::string errors;
    for (const auto& [name, option] : optionTable_) {
        if (option.required() && !option.wasSet()) {
            errors += errorLine("Missing required argument: " + name);
        }
    }
    return errors;
}

void AppArgManagerImpl::printUsage(std::ostream& out) const {
    out << appInfo_.description() << '\n' << "Command Line Options:\n";
    printRow(out, "[ --help ]", "Displays this help message.");
    printRow(out, "[ --version ]", "Displays version information.");
    for (const std::string& name : optionOrder_) {
        const auto found = optionTable_.find(name);
        if (found != optionTable_.end() && !found->second.hidden()) {
            printRow(out, optionLabel(found->second), found->second.description());
        }
    }
}

std::string AppArgManagerImpl::optionLabel(const Option& option) {
    std::string label = option.name();
    if (option.takesValue()) {
        label += "=<val>";
    }
    return option.required() ? label : "[ " + label + " ]";
}

}  // namespace zeb::commandline2
