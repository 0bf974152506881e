#pragma once

#include <cstddef>
#include <string>

#include "samplelog/LogWriter.h"

namespace zeb::samplelog {

/// A hostile log: all of its messages, of one method, refer to the same text and the same payload. Each has
/// an object event and a text event, and the text is the message's, and the name, the file name and the value
/// of the events.
struct SharedTextShape {
    MethodType methodType = MethodType::Finalize;
    std::size_t messages = 1;
    std::string text;
    std::size_t payloadSize = 8;  ///< bytes
    /// How much later the payload of each message begins than that of the one before, in bytes: a multiple of
    /// 4. All of them together take up half of the payload at most.
    std::size_t payloadStep = 0;
};

/// @return the log, one chunk
Bytes encodeSharedTextLog(const SharedTextShape& shape);

}  // namespace zeb::samplelog
