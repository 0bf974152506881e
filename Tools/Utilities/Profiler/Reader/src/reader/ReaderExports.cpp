#include "zeb/profiling/ReaderExports.h"

#include <memory>

#include "reader/MakeReader.h"

zeb::profiling::IZebPluginLogReader* createReader(const std::string& logFilePath,
                                                  zeb::profiling::VisibilityLevel level) {
    return zeb::profiling::makeReader(logFilePath, level).release();
}

void deleteReader(zeb::profiling::IZebPluginLogReader* reader) {
    const std::unique_ptr<zeb::profiling::IZebPluginLogReader> owned(reader);
}
