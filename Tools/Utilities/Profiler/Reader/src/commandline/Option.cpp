#include "commandline/Option.h"

#include <utility>

namespace zeb::commandline2 {

Option::Option(std::string name, OptionHandler handler, std::string description, bool takesValue,
               bool required, bool hidden)
    : name_(std::move(name)),
      handler_(std::move(handler)),
      description_(std::move(description)),
      takesValue_(takesValue),
      required_(required),
      hidden_(hidden) {}

bool Option::wasSet() const {
    return wasSet_;
}

bool Option::apply(const OptionValues& values) {
    wasSet_ = handler_(values);
    return wasSet_;
}

std::string Option::name() const {
    return name_;
}

std::string Option::description() const {
    return description_;
}

bool Option::takesValue() const {
    return takesValue_;
}

bool Option::required() const {
    return required_;
}

bool Option::hidden() const {
    return hidden_;
}

}  // namespace zeb::commandline2
