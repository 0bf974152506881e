#pragma once

#include <string>
#include <vector>

#include "console/TwoColumns.h"

namespace zeb::console {

/// An option of a command, as its help, its manual page and the completions of shells have it.
struct ManualOption {
    std::string name;       ///< with its dashes
    std::string valueForm;  ///< what stands behind the name: nothing, " FILE" or, where it may be left out,
                            ///< "[=N]". FILE, LOG and PATH are for files, DIR for a directory.
    std::string text;       ///< sentences; line feeds in it are blanks
    std::vector<std::string> values = {};  ///< that can be named, if there are such
};

struct ManualTable {
    std::string title;
    std::vector<LabelledText> rows;
};

struct ManualExample {
    std::string purpose;  ///< may be empty
    std::string command;
};

/// All that a command says about itself. The one source of its help, manual page and completions.
struct CommandManual {
    std::string name;
    std::string summary;              ///< one sentence
    std::vector<std::string> usages;  ///< the arguments, once for each form
    std::vector<ManualOption> options;
    std::vector<ManualTable> tables;      ///< further lists
    std::vector<std::string> paragraphs;  ///< of sentences
    ManualTable exitCodes;
    std::vector<ManualExample> examples;
};

/// @return the help, in lines of 80 columns at most, as far as no word and no example is longer
std::string helpText(const CommandManual& manual);

/// @return "name, name, name"
std::string namesInARow(const std::vector<std::string>& names);

}  // namespace zeb::console
