#pragma once

#include <string_view>

namespace zeb::forms {

/// The page around its data: what the build makes of the files in page/.
struct PageParts {
    std::string_view beforeRun;
    std::string_view beforeExecutions;
    std::string_view behind;
};
extern const PageParts pageParts;

}  // namespace zeb::forms
