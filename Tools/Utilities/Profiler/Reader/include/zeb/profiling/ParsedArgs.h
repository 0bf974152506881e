#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zeb::commandline2 {

/// What a command line says about one option.
struct ArgLookupResult {
    std::vector<std::shared_ptr<const std::string>>
        values;          ///< the values given for the name, none of them null
    bool found = false;  ///< the name was on the command line
};

/// A command line that the host has taken apart, asked for one option name at a time. The host implements it
/// and owns it; a reader uses it only within the call that it is handed to. The order of the virtual
/// operations is binding: the destructor first, then `lookup`.
class ParsedArgs {
public:
    ParsedArgs() = default;
    ParsedArgs(const ParsedArgs&) = delete;
    ParsedArgs& operator=(const ParsedArgs&) = delete;
    virtual ~ParsedArgs() = default;

    /// @param name the option with its dashes, "--internal" for instance
    virtual ArgLookupResult lookup(const std::string& name) = 0;
};

}  // namespace zeb::commandline2
