#pragma once

#include <ostream>
#include <vector>

#include "samplelog/LogWriter.h"

namespace zeb::samplelog {

/// Writes a log of any length: a chunk goes out as soon as it has the size of a full one.
class ChunkedLog {
public:
    /// @param out has to outlive the log; its state tells whether writing succeeded
    ChunkedLog(std::ostream& out, const Header& header);

    void add(const Message& message);
    /// Writes what is not out yet; nothing may be added behind it.
    void finish();

private:
    LogWriter writer_;
    bool chunkOpen_ = true;
};

/// Writes a log of chunks with the messages of each. The first one holds the header.
void writeChunks(std::ostream& out, const Header& header, const std::vector<std::vector<Message>>& chunks);

}  // namespace zeb::samplelog
