#pragma once

#include <span>

#include "analysis/Run.h"
#include "command/Forms.h"
#include "command/MemoryLimit.h"
#include "command/StandardOutput.h"
#include "viewer/GuardedStep.h"
#include "viewer/ViewerOptions.h"

namespace zeb::viewer {

/// What a form of a run is made of.
struct RunFormInput {
    const analysis::Run& run;
    const ViewerOptions& options;
};

/// The table of them, in the order in which they are written. A new one is a row here and a printer in Forms.
std::span<const command::Form<RunFormInput>> runForms();

/// What is made of the log itself, whichever plug-in prints the report: the forms, and the ranking.
class RunForms {
public:
    /// Opens the forms' files as far as can be done without changing anything.
    /// @param options has to outlive the forms
    /// @throws Failure when one can't be written
    explicit RunForms(const ViewerOptions& options);

    /// Reads the log.
    /// @throws Failure
    [[nodiscard]] analysis::Run readRun(command::MemoryLimit& memory) const;

    /// Prints all that is wanted.
    /// @throws Failure
    void show(const analysis::Run& run, command::StandardOutput& output, command::MemoryLimit& memory);

private:
    [[nodiscard]] GuardedStep step() const;
    void printTop(const analysis::Run& run, command::StandardOutput& output) const;

    const ViewerOptions& options_;
    command::WantedForms<RunFormInput> forms_;
};

}  // namespace zeb::viewer
