// A library with one of the two exports of a reader plug-in.

#include "zeb/profiling/ReaderExports.h"

zeb::profiling::IZebPluginLogReader* createReader(const std::string& /*logFilePath*/,
                                                  zeb::profiling::VisibilityLevel /*level*/) {
    return nullptr;
}
