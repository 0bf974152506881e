#pragma once

#include <string>

#include "commandline/IApplicationConfig.h"

namespace zeb::commandline {

/// Name, version and description of an application, with the SDK's own in place of an empty name or version.
class ApplicationInfo final : public ostrande::commandline::IApplicationConfig {
public:
    ApplicationInfo(const std::string& applicationName, const std::string& version,
                    const std::string& description);

    [[nodiscard]] std::string applicationName() const override;
    [[nodiscard]] std::string version() const override;
    [[nodiscard]] std::string description() const override;
    void printMessage(const std::string& text) const override;

private:
    std::string applicationName_;
    std::string version_;
    std::string description_;
};

}  // namespace zeb::commandline
