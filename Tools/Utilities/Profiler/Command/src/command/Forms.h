#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/CommandLine.h"
#include "command/FormFile.h"

/// The forms of a command: what it writes to a file that an option names, beside its text, or in place of the
/// text where that file is standard output. A form is a row of the command's table and a function that writes
/// it.
namespace zeb::command {

template <typename Input>
struct Form {
    std::string_view option;  ///< with its dashes
    std::string_view help;    ///< what it writes to FILE, a sentence without its end
    /// @return what a user has to know of it
    Words (*write)(std::ostream& out, const Input& input);
    std::uint64_t maxBytes = std::numeric_limits<std::uint64_t>::max();  ///< that what opens it copes with
    std::string_view whenLarger = {};                                    ///< to follow "N MB"
    bool isDetailed = false;  ///< shows what is gathered for such forms alone
};

/// Makes the forms' rows of a command's table of options.
/// @param text what there is not when a form is on standard output
/// @param apply takes what is given for a form, by the name of its option
template <typename Options, typename Input>
std::vector<OptionRow<Options>> formRows(std::span<const Form<Input>> forms, const std::string& text,
                                         void (*apply)(Options& options, const Given& given)) {
    std::vector<OptionRow<Options>> rows;
    for (const Form<Input>& form : forms) {
        rows.push_back({{std::string(form.option), " FILE",
                         std::string(form.help) + "; \"-\" is standard output, without " + text + "."},
                        Takes::value,
                        apply,
                        {},
                        {.writesFile = true}});
    }
    return rows;
}

/// The forms that are wanted, each with its file.
template <typename Input>
class WantedForms {
public:
    /// Opens the files as far as can be done without changing anything.
    /// @param forms stay where they are
    /// @param wanted by the names of their options
    /// @param logs that are read, of which no file may be one
    /// @throws Failure when a file can't be written, or is a log
    WantedForms(std::span<const Form<Input>> forms, std::span<const Given> wanted,
                std::span<const std::string> logs) {
        for (const Form<Input>& form : forms) {
            for (const Given& given : wanted) {
                if (given.name == form.option) {
                    forms_.push_back({form, given.value, FormFile(given.value, logs)});
                }
            }
        }
    }

    /// @return whether one of them is detailed
    [[nodiscard]] bool haveDetailed() const {
        return std::any_of(forms_.begin(), forms_.end(),
                           [](const Wanted& wanted) { return wanted.form.isDetailed; });
    }

    /// Writes them one after the other, as the table has them, and what users have to know on standard error.
    /// @throws Failure when one can't be written; what a form's function throws
    void write(const Input& input, std::string_view programName) {
        for (Wanted& wanted : forms_) {
            const Form<Input>& form = wanted.form;
            Words notes;
            const std::uint64_t bytes =
                wanted.file.write([&](std::ostream& out) { notes = form.write(out, input); });
            if (bytes > form.maxBytes) {
                notes.push_back(std::to_string(bytes >> 20U) + " MB " + std::string(form.whenLarger));
            }
            for (const std::string& note : notes) {
                printErrorLine(programName, wanted.path + ": note: " + note);
            }
        }
    }

private:
    struct Wanted {
        const Form<Input>& form;
        std::string path;
        FormFile file;
    };
    std::vector<Wanted> forms_;
};

}  // namespace zeb::command
