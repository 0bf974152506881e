#pragma once

#include <functional>
#include <string>

#include "command/Failure.h"

namespace zeb::command::test {

/// @return the call's failure, its text behind the exit code; empty when there is none
inline std::string failureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Failure& failure) {
        return std::to_string(static_cast<int>(failure.exitCode())) + " " + failure.what();
    }
    return "";
}

}  // namespace zeb::command::test
