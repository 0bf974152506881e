#include "reader/MakeReader.h"
#include "reader/ZebProfileLogReader.h"

namespace zeb::profiling {

std::unique_ptr<IZebPluginLogReader> makeReader(const std::string& logFilePath, VisibilityLevel level) {
    return std::make_unique<ZebProfileLogReader>(logFilePath, level);
}

}  // namespace zeb::profiling
