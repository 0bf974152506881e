#pragma once

#include <string>

namespace ostrande::commandline {

/// What an application says about itself. The order of the virtual operations is binding.
class IApplicationConfig {
public:
    IApplicationConfig() = default;
    IApplicationConfig(const IApplicationConfig&) = default;
    IApplicationConfig(IApplicationConfig&&) = default;
    IApplicationConfig& operator=(const IApplicationConfig&) = default;
    IApplicationConfig& operator=(IApplicationConfig&&) = default;
    virtual ~IApplicationConfig() = default;

    [[nodiscard]] virtual std::string applicationName() const = 0;
    [[nodiscard]] virtual std::string version() const = 0;
    [[nodiscard]] virtual std::string description() const = 0;
    /// Writes the text and a line feed to standard error.
    virtual void printMessage(const std::string& text) const = 0;
};

}  // namespace ostrande::commandline
