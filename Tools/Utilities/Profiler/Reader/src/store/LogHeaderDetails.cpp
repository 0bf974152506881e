#include "store/LogHeaderDetails.h"

#include <string_view>

#include "log/LogAccess.h"
#include "log/ProfileLog_generated.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view adapterUpdaterName = "sorel-lora-adapter-bin-updater";

std::string ownText(const flatbuffers::String* text) {
    return text == nullptr ? std::string() : std::string(storedText(text));
}

}  // namespace

LogHeaderDetails readLogHeader(const schema::LogHeader& header) {
    LogHeaderDetails details;
    details.headerSaved = true;
    details.timeScale = header.timeScale();
    details.epochTimestamp = header.epochTimestamp();
    details.steadyClockTimestamp = header.steadyClockTimestamp();
    details.generatorName = ownText(header.generatorName());
    details.generatorVersion = ownText(header.generatorVersion());
    details.backendInfo = ownText(header.backendInfo());
    details.isAdapterUpdaterLog = details.generatorName == adapterUpdaterName;
    return details;
}

}  // namespace zeb::profiling
