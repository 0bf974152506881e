#pragma once

#include <cstddef>

#include "command/MemoryLimit.h"
#include "command/runs/InputList.h"
#include "export/Batch.h"
#include "export/ExportOptions.h"
#include "export/RunIds.h"

namespace zeb::exports {

struct ExportResult {
    std::size_t written = 0;   ///< runs that are in the tables
    std::size_t rejected = 0;  ///< logs that can't be read, each told in a line on standard error
};

/// Reads the logs, several at a time, and appends their rows to the batch in the order of the logs, whatever
/// is read first. In memory are the runs at work alone; one that finds too little of it beside others is read
/// again by itself, so what becomes of a log does not depend on the others.
/// @param known runs that are left out; those that are written are added
/// @throws Failure when the batch can't be written, or the list of logs is bad
ExportResult exportRuns(command::InputList& inputs, const ExportOptions& options, RunIds& known,
                        command::MemoryLimit& memory, Batch& batch);

}  // namespace zeb::exports
