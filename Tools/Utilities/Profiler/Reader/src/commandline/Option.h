#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zeb::commandline2 {

using OptionValues = std::vector<std::shared_ptr<const std::string>>;

/// Takes the values given for an option and tells whether it accepts them. Never empty.
using OptionHandler = std::function<bool(const OptionValues&)>;

/// One option that a component has declared. The order of the virtual operations is binding.
class Option final {  // NOLINT(cppcoreguidelines-virtual-class-destructor): not one of its operations
public:
    /// @param name        with its dashes, "--internal" for instance
    /// @param description help text; its line feeds break it into rows
    Option(std::string name, OptionHandler handler, std::string description, bool takesValue, bool required,
           bool hidden);

    /// @return what the handler gave on the last `apply`, false until then
    [[nodiscard]] virtual bool wasSet() const;
    /// Hands the values to the handler, and keeps and returns its result.
    virtual bool apply(const OptionValues& values);
    [[nodiscard]] virtual std::string name() const;
    [[nodiscard]] virtual std::string description() const;
    [[nodiscard]] virtual bool takesValue() const;
    [[nodiscard]] virtual bool required() const;
    /// @return whether the usage text leaves the option out
    [[nodiscard]] virtual bool hidden() const;

private:
    bool wasSet_ = false;
    std::string name_;
    OptionHandler handler_;
    std::string description_;
    bool takesValue_;
    bool required_;
    bool hidden_;
};

}  // namespace zeb::commandline2
