#include "commandline/ApplicationInfo.h"

#include <iostream>
#include <string_view>

#include "zeb/profiling/Version.h"

namespace zeb::commandline {

namespace {

constexpr std::string_view defaultName = "Halvorne Neural Network SDK";
constexpr std::string_view defaultVersionPrefix = "ZEB SDK ";

}  // namespace

ApplicationInfo::ApplicationInfo(const std::string& applicationName, const std::string& version,
                                 const std::string& description)
    : applicationName_(applicationName), version_(version), description_(description) {}

std::string ApplicationInfo::applicationName() const {
    return applicationName_.empty() ? std::string(defaultName) : applicationName_;
}

std::string ApplicationInfo::version() const {
    return version_.empty() ? std::string(defaultVersionPrefix).append(profiling::versionText) : version_;
}

std::string ApplicationInfo::description() const {
    return description_;
}

void ApplicationInfo::printMessage(const std::string& text) const {
    std::cerr << text << std::endl;
}

}  // namespace zeb::commandline
