#include "text/NumberedName.h"

#include <algorithm>

namespace zeb::profiling {

std::string numberedName(const std::string& name, std::uint64_t number) {
    if (number == 0) {
        return name;
    }
    const std::size_t point = std::min(name.rfind('.'), name.size());
    return name.substr(0, point) + "_" + std::to_string(number) + name.substr(point);
}

}  // namespace zeb::profiling
