#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "commandline/Option.h"
#include "zeb/profiling/ParsedArgs.h"

namespace zeb::commandline2 {

/// What `IAppArgManager::parse` gives.
enum ParseCode : std::int32_t {
    parseGood = 0,
    parseHelpShown = 1,  ///< the usage text or the version was asked for and shown
    parseInvalid = 2,    ///< the arguments are wrong, and the user has been told
};

/// Looks at the arguments as a whole, after they have been parsed. Gives what is wrong, empty when nothing
/// is.
using ArgValidator = std::function<std::string()>;

/// Declares options, fills them from a command line and checks them. Use: register options and validators,
/// `parse` once, read the results. The order of the virtual operations is binding.
class IAppArgManager {
public:
    IAppArgManager() = default;
    IAppArgManager(const IAppArgManager&) = delete;
    IAppArgManager& operator=(const IAppArgManager&) = delete;

    /// Asks `parsedArgs` for each registered option and no other, runs the handlers of those that were given,
    /// then the checks. Everything that is wrong goes to standard error at once; no input makes it throw.
    /// @return a `ParseCode`
    virtual std::int32_t parse(ParsedArgs& parsedArgs) = 0;

    /// Registers an option that is written with a value. Of two options of the same name the first one
    /// stands.
    virtual void addValueOption(const std::string& name, OptionHandler handler,
                                const std::string& description, bool required, bool hidden) = 0;

    /// Registers an option without a value.
    /// @param flag is set to true when the option is given, and left alone otherwise; has to outlive `parse`
    virtual void addFlagOption(const std::string& name, bool* flag, const std::string& description,
                               bool required, bool hidden) = 0;

    /// @return whether the option was given and its handler has accepted it; false for an unknown name
    [[nodiscard]] virtual bool isOptionSet(const std::string& name) const = 0;

    /// Registers a check; checks run in order of registration.
    virtual void addValidator(ArgValidator validator) = 0;

    virtual ~IAppArgManager() = default;
};

}  // namespace zeb::commandline2
