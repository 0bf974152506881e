#pragma once

#include <optional>

#include "analysis/Run.h"
#include "command/FormFile.h"
#include "command/MemoryLimit.h"
#include "command/StandardOutput.h"
#include "viewer/GuardedStep.h"
#include "viewer/ViewerOptions.h"

namespace zeb::viewer {

/// The forms that are made of the log itself, whichever plug-in prints the report.
class RunForms {
public:
    /// Opens their files as far as can be done without changing anything.
    /// @param options has to outlive the forms
    /// @throws Failure when one can't be written
    explicit RunForms(const ViewerOptions& options);

    /// Reads the log, unless no form is wanted, and prints all of them.
    /// @throws Failure
    void show(command::StandardOutput& output, command::MemoryLimit& memory);

private:
    [[nodiscard]] analysis::Run readRun(command::MemoryLimit& memory) const;
    void printTop(const analysis::Run& run, command::StandardOutput& output) const;
    void writeTrace(const analysis::Run& run);

    const ViewerOptions& options_;
    std::optional<command::FormFile> json_;
    std::optional<command::FormFile> trace_;
    std::optional<command::FormFile> html_;
};

}  // namespace zeb::viewer
