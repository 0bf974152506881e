#pragma once

#include "command/Failure.h"

namespace zeb::exports {

/// The whole of zeb-profile-export.
/// @throws Failure
command::ExitCode runExport(int argc, const char* const* argv);

}  // namespace zeb::exports
