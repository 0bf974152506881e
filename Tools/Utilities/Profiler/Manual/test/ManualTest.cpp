// What commands say about themselves: help, manual pages and the descriptions of completions.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "compare/ComparisonForms.h"
#include "console/CommandManual.h"
#include "manual/Commands.h"
#include "manual/Completions.h"
#include "manual/ManPage.h"
#include "manual/ValueKind.h"
#include "viewer/RunForms.h"

namespace zeb::manual {
namespace {

using console::CommandManual;
using console::ManualOption;

CommandManual smallManual() {
    return {.name = "try-it",
            .summary = "Tries .it.",
            .usages = {"A", "B C"},
            .options = {{"--say", " WORD", "Say\nWORD: it's a back\\slash.", {"yes", "no"}}},
            .tables = {{"Things", {{"thing", ".is"}}}},
            .paragraphs = {"'.' - \"~\"", "Second."},
            .exitCodes = {"Exit codes", {{"0", "good"}}},
            .examples = {{"", "try-it A"}, {"Why", "try-it -- '\\n' | x"}}};
}

TEST(Manual, HelpOfEveryCommandFitsEightyColumnsAndLeadsToThePage) {
    for (const CommandManual& manual : commandManuals()) {
        const std::string text = helpText(manual);
        std::istringstream help(text);
        for (std::string line; std::getline(help, line);) {
            EXPECT_LE(line.size(), 80U) << line;
            EXPECT_FALSE(line.ends_with(' ')) << line;
        }
        EXPECT_TRUE(text.ends_with("\nMore: man " + manual.name + "\n"));
        EXPECT_FALSE(manual.examples.empty());
        EXPECT_FALSE(manual.exitCodes.rows.empty());
    }
}

TEST(Manual, HelpIsLaidOutFromTheTables) {
    EXPECT_EQ(helpText(smallManual()),
              "Tries .it.\n"
              "\nUsage: try-it A\n       try-it B C\n"
              "\nOptions:\n  --say WORD  Say WORD: it's a back\\slash.\n"
              "\nThings:\n  thing  .is\n"
              "\n'.' - \"~\"\n"
              "\nSecond.\n"
              "\nExit codes:\n  0  good\n"
              "\nExamples:\n  try-it A\nWhy:\n  try-it -- '\\n' | x\n"
              "\nMore: man try-it\n");
}

TEST(Manual, PagesHaveNoCharacterThatFormattingChanges) {
    const std::vector<std::string> others = {"one", "two"};
    EXPECT_EQ(manPage(smallManual(), {"1.2", "2026-01-31"}, others),
              ".TH TRY\\-IT 1 2026-01-31 1.2 \"Zeb Profiler\"\n"
              ".SH NAME\ntry\\-it \\- tries .it\n"
              ".SH SYNOPSIS\n\\fBtry\\-it\\fR A\n.br\n\\fBtry\\-it\\fR B C\n"
              ".SH DESCRIPTION\nTries .it.\n"
              ".PP\n\\(aq.\\(aq \\- \\(dq\\(ti\\(dq\n"
              ".PP\nSecond.\n"
              ".SH OPTIONS\n.TP\n\\fB\\-\\-say\\fR\\fI WORD\\fR\nSay WORD: it\\(aqs a back\\(rsslash.\n"
              ".SH THINGS\n.TP\n\\fBthing\\fR\n\\&.is\n"
              ".SH EXIT STATUS\nExit codes:\n.TP\n\\fB0\\fR\ngood\n"
              ".SH EXAMPLES\n.EX\n    try\\-it A\n.EE\n"
              ".PP\nWhy:\n.EX\n    try\\-it \\-\\- \\(aq\\(rsn\\(aq | x\n.EE\n"
              ".SH SEE ALSO\n.BR one (1) ,\n.BR two (1)\n");
}

TEST(Manual, FormsOfValuesSayWhatAShellCanOffer) {
    using Expected = std::tuple<ValueKind, bool, bool, std::string>;
    const std::pair<std::string, Expected> cases[] = {
        {"", {ValueKind::none, false, false, ""}},
        {" N", {ValueKind::free, false, false, "N"}},
        {" FILE", {ValueKind::file, false, false, "FILE"}},
        {" NAME|PATH", {ValueKind::file, false, false, "NAME|PATH"}},
        {" LOG...", {ValueKind::file, false, true, "LOG"}},
        {"[=DIR]", {ValueKind::directory, true, false, "DIR"}},
        {"[=N]", {ValueKind::free, true, false, "N"}},
        {" OLD=NEW", {ValueKind::free, false, false, "OLD=NEW"}},
        {" PROFILE", {ValueKind::free, false, false, "PROFILE"}},
    };
    for (const auto& [text, expected] : cases) {
        const ValueForm form = valueFormOf({"--option", text, "", {}});
        EXPECT_EQ(Expected(form.kind, form.isOptional, form.isRepeatable, form.label), expected) << text;
    }
}

TEST(Manual, AnOptionsFirstSentenceDescribesIt) {
    const std::pair<std::string, std::string> cases[] = {
        {"Say it.", "Say it"},
        {"Say\nit. Then go.", "Say it"},
        {"Order of layers: time (default).", "Order of layers"},
        {"Rows (default 10), 0.5 each.", "Rows"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(shortText({"--option", "", text, {}}), expected);
    }
}

TEST(Manual, TextsInCompletionsStayTexts) {
    CommandManual manual = smallManual();
    manual.options = {{"--odd", " A:B", "It's [\\odd]", {}}};
    EXPECT_NE(zshCompletion(manual).find("'--odd=[It'\\''s \\[\\\\odd\\]]:A\\:B: '"), std::string::npos);
    EXPECT_NE(fishCompletion(manual).find("-l odd -r -f -d 'It\\'s [\\\\odd]'\n"), std::string::npos);
}

TEST(Manual, TheViewersPageHasTheOptionsOfTheReaderToo) {
    const std::vector<ManualOption> options = commandManuals().front().options;
    for (const char* const name : {"--csv", "--internal", "--extra_help"}) {
        EXPECT_EQ(std::count_if(options.begin(), options.end(),
                                [name](const ManualOption& option) { return option.name == name; }),
                  1)
            << name;
    }
    EXPECT_EQ(std::count_if(options.begin(), options.end(),
                            [](const auto& option) { return option.name == "--help"; }),
              1);
}

// From what size on a form's file is too much for what opens it, in the words that the command has for it.
TEST(Manual, ThePageOfMessagesHasTheSizesOfForms) {
    std::ifstream file(ZEB_MESSAGES);
    const std::string messages{std::istreambuf_iterator<char>(file), {}};
    const auto expectRows = [&messages](const auto& forms, std::size_t expected) {
        std::size_t limited = 0;
        for (const auto& form : forms) {
            if (form.maxBytes != std::numeric_limits<std::uint64_t>::max()) {
                ++limited;
                EXPECT_NE(
                    messages.find("note: N MB " + std::string(form.whenLarger) + " | no fault; told beyond " +
                                  std::to_string(form.maxBytes >> 20U) + " MB"),
                    std::string::npos)
                    << form.option;
            }
        }
        EXPECT_EQ(limited, expected);
    };
    expectRows(viewer::runForms(), 2);
    expectRows(compare::comparisonForms(), 1);
}

}  // namespace
}  // namespace zeb::manual
