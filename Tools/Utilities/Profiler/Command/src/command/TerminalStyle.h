#pragma once

#include "forms/text/TopText.h"

namespace zeb::command {

/// @return what can be shown on a descriptor: colours on a terminal alone, unless NO_COLOR is set or TERM is
/// dumb; more than plain characters where the user's locale is of UTF-8; and the terminal's width
forms::ConsoleStyle styleOfTerminal(int descriptor);

}  // namespace zeb::command
