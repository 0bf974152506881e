// Declaring options, parsing them and the usage text, byte for byte.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "commandline/AppArgManagerImpl.h"
#include "support/CommandLine.h"

namespace zeb::commandline2 {
namespace {

using commandline::ApplicationInfo;
using test::CommandLine;
using test::Strings;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

const std::string usageHead =
    "\n"
    "Command Line Options:\n"
    "  [ --help ]            Displays this help message.\n"
    "  [ --version ]         Displays version information.\n";

// The usage text behind the part that is always the same.
std::string usageRows(const AppArgManagerImpl& manager) {
    std::ostringstream out;
    manager.printUsage(out);
    EXPECT_EQ(out.str().substr(0, usageHead.size()), usageHead);
    return out.str().substr(usageHead.size());
}

class AppArgManagerTest : public testing::Test {
protected:
    void value(const std::string& name, bool required = false, const std::string& description = "Text.") {
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

    std::int32_t parse(std::map<std::string, Strings> given) {
        CommandLine line(std::move(given));
        CaptureStderr();
        const std::int32_t code = manager.parse(line);
        said = GetCapturedStderr();
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
    value("--clock");
    flag("--internal");
    EXPECT_EQ(parse({{"--clock", {"12", "13"}}, {"--unknown", {}}}), parseGood);
    EXPECT_EQ(handled, (Strings{"12", "13"}));
    EXPECT_FALSE(flagGiven);
    EXPECT_EQ(said, "");
    EXPECT_TRUE(manager.isOptionSet("--clock"));
    EXPECT_FALSE(manager.isOptionSet("--internal"));
    EXPECT_FALSE(manager.isOptionSet("--unknown"));

    EXPECT_EQ(parse({{"--internal", {}}}), parseGood);
    EXPECT_TRUE(flagGiven);
    EXPECT_TRUE(manager.isOptionSet("--internal"));
}

TEST_F(AppArgManagerTest, HelpWinsOverVersionAndBothOverEveryError) {
    value("--needed", true);
    manager.addValidator([] { return "never seen"; });
    EXPECT_EQ(parse({{"--version", {}}, {"--help", {}}, {"--needed", {"1"}}}), parseHelpShown);
    EXPECT_EQ(said, usageHead + "  --needed=<val>        Text.\n");
    EXPECT_EQ(parse({{"--version", {}}}), parseHelpShown);
    EXPECT_EQ(said, "ZEB SDK v2.51.0.260929181845\n");
    EXPECT_EQ(handled, Strings{});
}

TEST_F(AppArgManagerTest, LeavesHelpAndVersionToTheCallerWhenToldTo) {
    AppArgManagerImpl plain(false);
    CommandLine line({{"--help", {}}, {"--version", {}}});
    EXPECT_EQ(plain.parse(line), parseGood);
    EXPECT_EQ(line.asked, Strings{});
    EXPECT_EQ(parse({}), parseGood);
    EXPECT_EQ(asked, (Strings{"--help", "--version"}));
}

TEST_F(AppArgManagerTest, TellsAllThatIsWrongAtOnce) {
    value("--needed", true);
    manager.addValidator([] { return "first"; });
    manager.addValidator([] { return ""; });
    manager.addValidator([] { return "last"; });
    const std::string usage = usageHead + "  --needed=<val>        Text.\n\nArguments Invalid:\n";
    EXPECT_EQ(parse({}), parseInvalid);
    EXPECT_EQ(said, usage + "ERROR:\tMissing required argument: --needed\nERROR:\tfirst\nERROR:\tlast\n");

    EXPECT_EQ(parse({{"--needed", {"1"}}}), parseInvalid);
    EXPECT_EQ(said, usage + "ERROR:\tfirst\nERROR:\tlast\n");
}

TEST_F(AppArgManagerTest, CountsARefusedRequiredOptionAsMissing) {
    value("--needed", true);
    value("--optional");
    accept = false;
    EXPECT_EQ(parse({{"--needed", {"1"}}, {"--optional", {"2"}}}), parseInvalid);
    EXPECT_EQ(said, usageHead +
                        "  --needed=<val>        Text.\n"
                        "  [ --optional=<val> ]  Text.\n"
                        "\nArguments Invalid:\nERROR:\tMissing required argument: --needed\n");
    EXPECT_EQ(handled.size(), 2U);
}

TEST_F(AppArgManagerTest, ChecksRunAfterTheHandlers) {
    flag("--extra");
    manager.addValidator([this] { return flagGiven ? "seen" : ""; });
    EXPECT_EQ(parse({}), parseGood);
    EXPECT_EQ(parse({{"--extra", {}}}), parseInvalid);
}

TEST_F(AppArgManagerTest, LaysTheUsageRowsOut) {
    const std::string blanks(24, ' ');
    const struct {
        const char* rule;
        std::string name;
        std::string description;
        std::string rows;
    } cases[] = {
        {"label of 22", "--" + std::string(14, 'a'), "Text.", "  [ --aaaaaaaaaaaaaa ]  Text.\n"},
        {"label of 23", "--" + std::string(15, 'a'), "Text.",
         "  [ --aaaaaaaaaaaaaaa ] \n" + blanks + "Text.\n"},
        {"label of 24", "--" + std::string(16, 'a'), "Text.",
         "  [ --aaaaaaaaaaaaaaaa ]\n" + blanks + "Text.\n"},
        {"label of 25", "--" + std::string(17, 'a'), "Text.",
         "  [ --aaaaaaaaaaaaaaaaa ]\n" + blanks + "Text.\n"},
        {"long label, no text", "--" + std::string(17, 'a'), "", "  [ --aaaaaaaaaaaaaaaaa ]\n"},
        {"no text", "--a", "", "  [ --a ]               \n"},
        {"three lines", "--a", "1\n2\n3", "  [ --a ]               1\n" + blanks + "2\n" + blanks + "3\n"},
        {"line feed at the end", "--a", "1\n", "  [ --a ]               1\n"},
        {"only a line feed", "--a", "\n", "  [ --a ]               \n"},
        {"blank last line", "--a", "1\n\n", "  [ --a ]               1\n" + blanks + "\n"},
    };
    for (const auto& [rule, name, description, rows] : cases) {
        AppArgManagerImpl ofOne(true);
        ofOne.addFlagOption(name, &flagGiven, description, false, false);
        EXPECT_EQ(usageRows(ofOne), rows) << rule;
    }
}

TEST_F(AppArgManagerTest, ListsInOrderOfRegistrationWithoutHiddenOptions) {
    for (const char* name : {"--zeta", "--alpha", "--mid"}) {
        flag(name);
    }
    flag("--secret", true);
    value("--alpha", true, "Never seen.");  // the first one stands, and has its row twice
    EXPECT_EQ(usageRows(manager),
              "  [ --zeta ]            Text.\n"
              "  [ --alpha ]           Text.\n"
              "  [ --mid ]             Text.\n"
              "  [ --alpha ]           Text.\n");
    EXPECT_EQ(parse({{"--secret", {}}}), parseGood);
    EXPECT_TRUE(manager.isOptionSet("--secret"));
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "--alpha"), 1);
}

TEST(ApplicationInfoTest, FallsBackToTheSdk) {
    const ApplicationInfo sdk("", "", "");
    EXPECT_EQ(sdk.applicationName(), "Halvorne Neural Network SDK");
    EXPECT_EQ(sdk.version(), "ZEB SDK v2.51.0.260929181845");
    EXPECT_EQ(sdk.description(), "");
    const ApplicationInfo own("Tool", "1.0", "About.");
    EXPECT_EQ(own.applicationName() + own.version() + own.description(), "Tool1.0About.");
    CaptureStderr();
    own.printMessage("hello");
    EXPECT_EQ(GetCapturedStderr(), "hello\n");
}

}  // namespace
}  // namespace zeb::commandline2
