#pragma once

#include <cstdint>
#include <string>

#include "samplelog/LogWriter.h"
#include "samplelog/SharedEventsLog.h"
#include "support/TestFiles.h"

namespace zeb::command::test {

using zeb::test::fileText;
using zeb::test::OrdinaryUser;
using zeb::test::TempDir;

inline std::string textOf(const samplelog::Bytes& log) {
    return {log.begin(), log.end()};
}

/// @return the length prefix of a chunk
inline std::string prefixOf(std::uint32_t length) {
    std::string prefix;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        prefix += static_cast<char>(length >> shift & 0xFFU);
    }
    return prefix;
}

/// @return the chunk with its length prefix
inline std::string withPrefix(const std::string& chunk) {
    return prefixOf(static_cast<std::uint32_t>(chunk.size())) + chunk;
}

/// @return a log of one chunk, which holds a header with a name in it
inline std::string soundLog() {
    return textOf(samplelog::encodeLog(
        samplelog::Header{.generatorName = "generator", .generatorVersion = {}, .backendInfo = {}}, {}));
}

/// @return a log of few bytes that stands for more than two million events, with an object at the bottom
inline std::string sharedEventsLog(const std::string& objectName) {
    return textOf(samplelog::encodeSharedEventsLog(
        {.levels = 8, .sharedLevels = 7, .fanOut = 8, .objectName = objectName}));
}

}  // namespace zeb::command::test
