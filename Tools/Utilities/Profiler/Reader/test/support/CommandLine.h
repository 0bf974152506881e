#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zeb/profiling/ParsedArgs.h"

namespace zeb::test {

using Strings = std::vector<std::string>;

/// A command line with the values of each option that is on it. It remembers which names it was asked for.
class CommandLine final : public commandline2::ParsedArgs {
public:
    using Given = std::map<std::string, Strings>;

    explicit CommandLine(Given given) : given_(std::move(given)) {}

    commandline2::ArgLookupResult lookup(const std::string& name) override {
        asked.push_back(name);
        commandline2::ArgLookupResult result;
        if (const auto found = given_.find(name); found != given_.end()) {
            result.found = true;
            for (const std::string& value : found->second) {
                result.values.push_back(std::make_shared<const std::string>(value));
            }
        }
        return result;
    }

    Strings asked;

private:
    Given given_;
};

}  // namespace zeb::test
