#pragma once

namespace zeb::command {

/// @return whether an allocation of this thread has failed since this was asked last, under a `MemoryLimit`;
/// also when
///         somebody has caught that
bool takeAllocationFailure();

}  // namespace zeb::command
