#pragma once

#include <string_view>

namespace zeb::forms {

/// A page around its data, which is an object and what the page needs beside it: what the build makes of the
/// files in page/.
struct PageParts {
    std::string_view beforeData;
    std::string_view beforeExtra;
    std::string_view beforeLate;  ///< with the script; what comes late is read behind the first picture
    std::string_view behind;      ///< empty for a page that has nothing late
};
extern const PageParts pageParts;        ///< of a run
extern const PageParts comparisonParts;  ///< of two versions
extern const PageParts historyParts;     ///< of a history

}  // namespace zeb::forms
