#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "zeb/profiling/ParsedArgs.h"

namespace zeb::viewer {

/// The arguments that the viewer leaves to the reader. It learns what they mean from what the reader asks
/// for.
class ViewerArgs final : public commandline2::ParsedArgs {
public:
    /// @param arguments of the command line, in its order. Those that begin with a dash are options, unless
    ///                  they are numbers or stand behind a "--".
    explicit ViewerArgs(const std::vector<std::string>& arguments);

    /// Finds an option as `name`, whose values are the words behind it up to the next option, and as
    /// `name=value`. Several of them give their values in their order.
    commandline2::ArgLookupResult lookup(const std::string& name) override;

    /// @return what the reader has asked for
    [[nodiscard]] const std::set<std::string>& askedNames() const { return askedNames_; }

    struct Leftover {
        std::string name;  ///< the option without its value, or the word
        bool isOption;
    };
    /// @return the first argument that no lookup has found
    [[nodiscard]] std::optional<Leftover> firstLeftover() const;

private:
    struct Argument {
        std::string text;
        bool isOption;
        bool found = false;

        [[nodiscard]] std::string name() const;
        [[nodiscard]] bool hasValue() const { return name().size() < text.size(); }
    };

    void takeValues(std::size_t position, commandline2::ArgLookupResult& result);

    std::vector<Argument> arguments_;
    std::set<std::string> askedNames_;
};

}  // namespace zeb::viewer
