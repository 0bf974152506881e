// What a reader learns from the arguments that the viewer leaves to it.

#include <gtest/gtest.h>

#include "viewer/ViewerArgs.h"

namespace zeb::viewer {
namespace {

using Strings = std::vector<std::string>;

// The values as one text, with a mark when the name was not found.
std::string lookUp(ViewerArgs& args, const std::string& name) {
    const auto result = args.lookup(name);
    std::string text = result.found ? "" : "not found";
    for (const auto& value : result.values) {
        text += "[" + *value + "]";
    }
    return text;
}

TEST(ViewerArgs, FindsOptionsAndTheirValues) {
    const struct {
        Strings arguments;
        std::string name;
        std::string expected;
    } cases[] = {
        {{}, "--a", "not found"},
        {{"--a"}, "--a", ""},
        {{"--a=1"}, "--a", "[1]"},
        {{"--a="}, "--a", "[]"},
        {{"--a=b=c"}, "--a", "[b=c]"},
        {{"--a", "1", "2", "--b", "3"}, "--a", "[1][2]"},
        {{"--a=1", "2"}, "--a", "[1]"},
        {{"--a", "1", "--b", "--a=2", "--a", "3"}, "--a", "[1][2][3]"},
        {{"--a", "-5", "-", "-x"}, "--a", "[-5][-]"},
        {{"--a", "--", "--b"}, "--a", "[--b]"},
        {{"--", "--a"}, "--a", "not found"},
        {{"--ab", "--A"}, "--a", "not found"},
        {{"a", "b"}, "a", "not found"},
        {{"-a", "1"}, "-a", "[1]"},
    };
    for (const auto& [arguments, name, expected] : cases) {
        ViewerArgs args(arguments);
        EXPECT_EQ(lookUp(args, name), expected) << testing::PrintToString(arguments);
        EXPECT_EQ(lookUp(args, name), expected) << "asked a second time";
    }
}

TEST(ViewerArgs, KnowsWhatNobodyHasAskedFor) {
    ViewerArgs args({"--a", "1", "--b=2", "word", "--", "--c"});
    const struct {
        std::string asked;
        std::string leftover;
        bool isOption;
    } cases[] = {{"--d", "--a", true}, {"--a", "--b", true}, {"--b", "word", false}, {"--c", "word", false}};
    for (const auto& [asked, name, isOption] : cases) {
        args.lookup(asked);
        const auto leftover = args.firstLeftover();
        ASSERT_TRUE(leftover.has_value());
        EXPECT_EQ(leftover->name, name);
        EXPECT_EQ(leftover->isOption, isOption);
    }
    EXPECT_EQ(args.askedNames(), (std::set<std::string>{"--a", "--b", "--c", "--d"}));

    ViewerArgs allFound({"--a", "1"});
    allFound.lookup("--a");
    EXPECT_FALSE(allFound.firstLeftover().has_value());
}

}  // namespace
}  // namespace zeb::viewer
