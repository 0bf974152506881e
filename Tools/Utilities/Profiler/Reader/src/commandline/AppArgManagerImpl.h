#pragma once

#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

#include "commandline/ApplicationInfo.h"
#include "commandline/IAppArgManager.h"

namespace zeb::commandline2 {

/// The option manager. It belongs to the thread that made it.
class AppArgManagerImpl final : public IAppArgManager {
public:
    /// @param handleHelpVersion whether `parse` answers "--help" and "--version" itself
    explicit AppArgManagerImpl(bool handleHelpVersion);

    std::int32_t parse(ParsedArgs& parsedArgs) override;
    void addValueOption(const std::string& name, OptionHandler handler, const std::string& description,
                        bool required, bool hidden) override;
    void addFlagOption(const std::string& name, bool* flag, const std::string& description, bool required,
                       bool hidden) override;
    [[nodiscard]] bool isOptionSet(const std::string& name) const override;
    void addValidator(ArgValidator validator) override;

    /// Lists the options that are not hidden, in order of registration.
    void printUsage(std::ostream& out) const;

private:
    void addOption(const Option& option);
    bool showHelpOrVersion(ParsedArgs& parsedArgs) const;
    [[nodiscard]] bool validate() const;
    [[nodiscard]] std::string missingRequiredText() const;
    [[nodiscard]] static std::string optionLabel(const Option& option);

    std::unordered_map<std::string, Option> optionTable_;
    std::vector<std::string> optionOrder_;  // has a name twice when it was registered twice
    commandline::ApplicationInfo appInfo_;
    std::vector<ArgValidator> validators_;
    bool handleHelpVersion_;
};

}  // namespace zeb::commandline2
