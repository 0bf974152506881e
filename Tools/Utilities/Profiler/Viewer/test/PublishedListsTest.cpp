// Lists that users read: what the documents say is what the command does.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "analysis/Glossary.h"
#include "console/TwoColumns.h"
#include "support/TestFiles.h"
#include "viewer/NamedReaders.h"
#include "viewer/PluginLibrary.h"
#include "viewer/ViewerOptions.h"

namespace zeb::viewer {
namespace {

// The rows of the table whose first cell is a number.
std::string exitCodesOf(const std::string& page) {
    std::string rows;
    for (std::size_t at = page.find("| Exit code |"); at < page.size() && page[at] == '|';) {
        const std::size_t end = page.find('\n', at) + 1;
        if (page[at + 2] >= '0' && page[at + 2] <= '9') {
            rows += page.substr(at, end - at);
        }
        at = end;
    }
    std::erase(rows, '`');
    return rows;
}

TEST(PublishedLists, APageHasAllExitCodesInTheWordsOfTheHelp) {
    std::string expected;
    for (auto [code, meaning] : console::rowsOf(meaningOf)) {
        std::replace(meaning.begin(), meaning.end(), '\n', ' ');
        expected.append("| ").append(code).append(" | ").append(meaning).append(" |\n");
    }
    EXPECT_EQ(exitCodesOf(test::fileText(ZEB_EXIT_CODES)), expected);
}

TEST(PublishedLists, EachNamedReaderCanBeLoadedAndIsInTheReadme) {
    const std::string readme = test::fileText(ZEB_README);
    for (const NamedReader& reader : namedReaders) {
        const PluginLibrary plugin{std::string(reader.name)};
        EXPECT_NE(plugin.createReader("run.log", profiling::VisibilityLevel{127}), nullptr);
        EXPECT_NE(readme.find("`--reader " + std::string(reader.name) + "`"), std::string::npos)
            << reader.name;
    }
}

TEST(PublishedLists, TheReadmeTellsTheWordsAsTheFormsDo) {
    std::string readme = test::fileText(ZEB_README);
    std::replace(readme.begin(), readme.end(), '\n', ' ');
    for (const analysis::Term& term : analysis::glossary) {
        const std::string wanted = "**" + std::string(term.word) + "**: " + std::string(term.meaning) + '.';
        EXPECT_NE(readme.find(wanted), std::string::npos) << wanted;
    }
}

}  // namespace
}  // namespace zeb::viewer
