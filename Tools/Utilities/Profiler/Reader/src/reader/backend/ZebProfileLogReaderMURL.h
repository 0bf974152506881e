#pragma once

#include "reader/ZebProfileLogReader.h"

namespace zeb::profiling {

/// The reader for logs of the Murl backend: it reports where the time of an execution goes, on the
/// accelerator's layers and on those of the framework.
class ZebProfileLogReaderMURL final : public ZebProfileLogReader {
public:
    using ZebProfileLogReader::ZebProfileLogReader;

    /// The console report goes to standard output before the file is opened.
    bool generateReports(const std::string& outputPath) override;
    bool parseBackendArgs(commandline2::ParsedArgs& parsedArgs) override;

private:
    bool internalColumns_ = false;
};

}  // namespace zeb::profiling
