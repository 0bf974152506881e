#pragma once

#include <cstdint>
#include <string>

#include "support/TestFiles.h"

namespace zeb::viewer::test {

using zeb::test::fileText;
using zeb::test::OrdinaryUser;
using zeb::test::TempDir;

/// @return a chunk of a log, a header with a name in it, without its length prefix
std::string soundChunk();

/// @return a log of few bytes that stands for more than two million events: eight children each, seven levels
///         deep, the same ones for all parents. The innermost is an object.
std::string sharedEventsLog(const std::string& objectName);

/// @return the length prefix of a chunk
std::string prefixOf(std::uint32_t length);

/// @return the chunk with its length prefix
std::string withPrefix(const std::string& chunk);

}  // namespace zeb::viewer::test
