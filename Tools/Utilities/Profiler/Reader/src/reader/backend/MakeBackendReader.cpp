#include "reader/MakeReader.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"

namespace zeb::profiling {

std::unique_ptr<IZebPluginLogReader> makeReader(const std::string& logFilePath, VisibilityLevel level) {
    return std::make_unique<ZebProfileLogReaderMURL>(logFilePath, level);
}

}  // namespace zeb::profiling
