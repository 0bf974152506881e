#include <gtest/gtest.h>

#include "NearestName.h"

namespace zeb::viewer {
namespace {

TEST(NearestName, IsWhatWasMostLikelyMeantOrNothing) {
    const std::vector<std::string> known = {"--level",  "--csv",        "--help",
                                            "--reader", "--extra_help", "--internal"};
    const struct {
        std::string given;
        std::string meant;
    } cases[] = {
        {"--levle", "--level"},  // two letters changed places
        {"--intenral", "--internal"},
        {"-csv", "--csv"},
        {"--CSV", "--csv"},
        {"--extra-help", "--extra_help"},
        {"--hlp", "--help"},
        {"-h", "--help"},
        {"--int", "--internal"},
        {"--lvl", "--level"},
        {"--reader-name", ""},
        {"--frobnicate", ""},
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
}  // namespace zeb::viewer
