#include "console/CommandManual.h"

#include "console/ConsoleText.h"

namespace zeb::console {

namespace {

std::string usageLines(const CommandManual& manual) {
    std::string lines;
    for (const std::string& usage : manual.usages) {
        lines.append(lines.empty() ? "Usage: " : "       ").append(manual.name).append(" ").append(usage) +=
            '\n';
    }
    return lines;
}

std::string tableLines(const ManualTable& table) {
    return "\n" + table.title + ":\n" + twoColumns(table.rows);
}

ManualTable optionTable(const std::vector<ManualOption>& options) {
    ManualTable table{"Options", {}};
    for (const ManualOption& option : options) {
        table.rows.push_back({option.name + option.valueForm, option.text});
    }
    return table;
}

}  // namespace

std::string helpText(const CommandManual& manual) {
    std::string help = manual.summary + "\n\n" + usageLines(manual) + tableLines(optionTable(manual.options));
    for (const ManualTable& table : manual.tables) {
        help += tableLines(table);
    }
    for (const std::string& paragraph : manual.paragraphs) {
        help += '\n';
        for (const std::string& line : wrapped(paragraph, helpWidth)) {
            help += line + '\n';
        }
    }
    help += tableLines(manual.exitCodes) + "\nExamples:\n";
    for (const ManualExample& example : manual.examples) {
        help += (example.purpose.empty() ? "" : example.purpose + ":\n") + "  " + example.command + "\n";
    }
    return help + "\nMore: man " + manual.name + "\n";
}

std::string namesInARow(const std::vector<std::string>& names) {
    std::string row;
    for (const std::string& name : names) {
        row.append(row.empty() ? "" : ", ").append(name);
    }
    return row;
}

}  // namespace zeb::console
