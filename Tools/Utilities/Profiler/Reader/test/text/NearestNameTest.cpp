#include <gtest/gtest.h>

#include "text/NearestName.h"

namespace zeb::profiling {
namespace {

TEST(NearestName, IsWhatWasMostLikelyMeantOrNothing) {
    const std::vector<std::string> known = {"--level",      "--csv",      "--help", "--reader",
                                            "--extra_help", "--internal", "time"};
    const std::pair<std::string, std::string> cases[] = {
        {"--levle", "--level"},  // two letters changed places
        {"-csv", "--csv"},
        {"--CSV", "--csv"},
        {"--extra-help", "--extra_help"},
        {"-h", "--help"},
        {"--int", "--internal"},
        {"--lvl", "--level"},
        {"tiem", "time"},
        {"size", ""},  // two letters of four
        {"--reader-name", ""},
        {"--xyz", ""},
        {"-x", ""},
        {"--", ""},
        {"", ""},
    };
    for (const auto& [given, meant] : cases) {
        EXPECT_EQ(nearestName(given, known).value_or(""), meant) << given;
    }
}

}  // namespace
}  // namespace zeb::profiling
