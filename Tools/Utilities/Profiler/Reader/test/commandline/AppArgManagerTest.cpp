// Declaring options, parsing them and the usage text, byte for byte.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "commandline/AppArgManagerImpl.h"
#include "support/CommandLine.h"

namespace zeb::commandline2 {
namespace {

using commandline::ApplicationInfo;
using test::CommandLine;
using test::Strings;

const std::string usageHead =
    "\n"
    "Command Line Options:\n"
    "  [ --help ]            Displays this help message.\n"
    "  [ --version ]         Displays version information.\n";

class AppArgManagerTest : public testing::Test {
protected:
    void value(const std::string& name, bool required, const std::string& description = "Text.") {
        const auto keep = [this](const OptionValues& values) {
            for (const auto& given : values) {
                handled.push_back(*given);
            }
            return accept;
        };
        manager.addValueOption(name, keep, description, required, false);
    }

    void flag(const std::string& name, bool hidden = false) {
        manager.addFlagOption(name, &flagGiven, "Text.", false, hidden);
    }

    std::int32_t parse(CommandLine::Given given) {
        CommandLine line(std::move(given));
        testing::internal::CaptureStderr();
        const std::int32_t code = manager.parse(line);
        said = testing::internal::GetCapturedStderr();
        asked = line.asked;
        return code;
    }

    AppArgManagerImpl manager{true};
    bool flagGiven = false;
    bool accept = true;
    Strings handled;
    Strings asked;
    std::string said;
};

TEST_F(AppArgManagerTest, SetsWhatWasGivenAndNothingElse) {
    value("--clock", false);
    flag("--internal");
    manager.addValidator([this] { return flagGiven ? "seen" : ""; });
    EXPECT_EQ(parse({{"--clock", {"12", "13"}}, {"--unknown", {}}}), parseGood);
    EXPECT_EQ(handled, (Strings{"12", "13"}));
    EXPECT_FALSE(flagGiven);
    EXPECT_EQ(said, "");
    EXPECT_TRUE(manager.isOptionSet("--clock"));
    EXPECT_FALSE(manager.isOptionSet("--internal") || manager.isOptionSet("--unknown"));
    EXPECT_EQ(parse({{"--internal", {}}}), parseInvalid) << "the checks run after the handlers";
    EXPECT_TRUE(flagGiven && manager.isOptionSet("--internal"));
}

TEST_F(AppArgManagerTest, HelpWinsOverVersionAndBothOverEveryErrorUnlessTheyAreLeftToTheCaller) {
    value("--needed", true);
    manager.addValidator([] { return "never seen"; });
    EXPECT_EQ(parse({{"--version", {}}, {"--help", {}}, {"--needed", {"1"}}}), parseHelpShown);
    EXPECT_EQ(said, usageHead + "  --needed=<val>        Text.\n");
    EXPECT_EQ(parse({{"--version", {}}}), parseHelpShown);
    EXPECT_EQ(said, "ZEB SDK v2.51.0.260929181845\n");
    EXPECT_EQ(handled, Strings{});
    AppArgManagerImpl plain(false);
    CommandLine line(CommandLine::Given{{"--help", {}}, {"--version", {}}});
    EXPECT_EQ(plain.parse(line), parseGood);
    EXPECT_EQ(line.asked, Strings{});
}

TEST_F(AppArgManagerTest, TellsAllThatIsWrongAtOnceAndCountsARefusedOptionAsMissing) {
    value("--needed", true);
    value("--optional", false);
    const std::string usage = usageHead +
                              "  --needed=<val>        Text.\n"
                              "  [ --optional=<val> ]  Text.\n"
                              "\nArguments Invalid:\n";
    const std::string missing = "ERROR:\tMissing required argument: --needed\n";
    accept = false;
    EXPECT_EQ(parse({{"--needed", {"1"}}, {"--optional", {"2"}}}), parseInvalid);
    EXPECT_EQ(said, usage + missing);
    EXPECT_EQ(handled.size(), 2U);
    manager.addValidator([] { return "first"; });
    manager.addValidator([] { return ""; });
    manager.addValidator([] { return "last"; });
    EXPECT_EQ(parse({}), parseInvalid);
    EXPECT_EQ(said, usage + missing + "ERROR:\tfirst\nERROR:\tlast\n");
    accept = true;
    EXPECT_EQ(parse({{"--needed", {"1"}}}), parseInvalid);
    EXPECT_EQ(said, usage + "ERROR:\tfirst\nERROR:\tlast\n");
    accept = false;
    parse({{"--needed", {"1"}}});
    EXPECT_FALSE(manager.isOptionSet("--needed")) << "the last value counts";
    value("--other", true);
    EXPECT_EQ(parse({}), parseInvalid);
    EXPECT_NE(said.find("argument: --needed\n"), std::string::npos);
    EXPECT_NE(said.find("argument: --other\n"), std::string::npos);
}

// The usage text behind the part that is always the same.
std::string usageRows(const AppArgManagerImpl& manager) {
    std::ostringstream out;
    manager.printUsage(out);
    EXPECT_EQ(out.str().substr(0, usageHead.size()), usageHead);
    return out.str().substr(usageHead.size());
}

TEST_F(AppArgManagerTest, LaysTheUsageRowsOut) {
    const std::string nextRow = "\n" + std::string(24, ' ');
    const struct {
        std::size_t nameSize;
        std::string description;
        std::string row;
    } cases[] = {
        {14, "Text.", "  [ --aaaaaaaaaaaaaa ]  Text."},
        {15, "Text.", "  [ --aaaaaaaaaaaaaaa ] " + nextRow + "Text."},
        {16, "Text.", "  [ --aaaaaaaaaaaaaaaa ]" + nextRow + "Text."},
        {17, "Text.", "  [ --aaaaaaaaaaaaaaaaa ]" + nextRow + "Text."},
        {17, "", "  [ --aaaaaaaaaaaaaaaaa ]"},
        {1, "", "  [ --a ]               "},
        {1, "1\n2\n3", "  [ --a ]               1" + nextRow + "2" + nextRow + "3"},
        {1, "\n", "  [ --a ]               "},
        {1, "1\n\n", "  [ --a ]               1" + nextRow},
    };
    for (const auto& [nameSize, description, row] : cases) {
        AppArgManagerImpl ofOne(true);
        ofOne.addFlagOption("--" + std::string(nameSize, 'a'), &flagGiven, description, false, false);
        EXPECT_EQ(usageRows(ofOne), row + "\n");
    }
}

TEST_F(AppArgManagerTest, ListsInOrderOfRegistrationWithoutHiddenOptions) {
    flag("--zeta");
    flag("--alpha");
    flag("--secret", true);
    value("--alpha", true, "Never seen.");  // the first one stands, and has its row twice
    EXPECT_EQ(
        usageRows(manager),
        "  [ --zeta ]            Text.\n  [ --alpha ]           Text.\n  [ --alpha ]           Text.\n");
    EXPECT_EQ(parse({{"--secret", {}}}), parseGood);
    EXPECT_TRUE(manager.isOptionSet("--secret"));
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "--alpha"), 1);
}

TEST(ApplicationInfoTest, FallsBackToTheSdk) {
    const ApplicationInfo sdk("", "", "");
    EXPECT_EQ(sdk.applicationName() + sdk.description(), "Halvorne Neural Network SDK");
    EXPECT_EQ(sdk.version(), "ZEB SDK v2.51.0.260929181845");
    const ApplicationInfo own("Tool", "1.0", "About.");
    EXPECT_EQ(own.applicationName() + own.version() + own.description(), "Tool1.0About.");
}

}  // namespace
}  // namespace zeb::commandline2
