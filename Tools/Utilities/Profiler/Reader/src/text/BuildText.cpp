#include "text/BuildText.h"

#include "Commit.h"

namespace zeb::profiling {

std::string versionLines(std::string_view command, std::string_view version) {
    constexpr std::string_view type = ZEB_BUILD_TYPE;
    constexpr std::string_view commit = ZEB_COMMIT;
    std::string lines(command);
    lines.append(" ").append(version).append("\nBuilt by " ZEB_COMPILER " for " ZEB_SYSTEM);
    lines.append(type.empty() ? "" : ", ").append(type);
    lines.append(commit.empty() ? "" : ", from commit ").append(commit);
    return lines + "\n";
}

}  // namespace zeb::profiling
