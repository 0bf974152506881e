// Lists that users read: what the README says is what the command does.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "console/TwoColumns.h"
#include "support/TestFiles.h"
#include "viewer/NamedReaders.h"
#include "viewer/PluginLibrary.h"
#include "viewer/ViewerOptions.h"

namespace zeb::viewer {
namespace {

// The rows of the README's table whose first cell is a number.
std::string exitCodesOfReadme(const std::string& readme) {
    std::string rows;
    for (std::size_t at = readme.find("| Exit code |"); at < readme.size() && readme[at] == '|';) {
        const std::size_t end = readme.find('\n', at) + 1;
        if (readme[at + 2] >= '0' && readme[at + 2] <= '9') {
            rows += readme.substr(at, end - at);
        }
        at = end;
    }
    std::erase(rows, '`');
    return rows;
}

TEST(PublishedLists, TheReadmeHasAllExitCodesInTheWordsOfTheHelp) {
    std::string expected;
    for (auto [code, meaning] : console::rowsOf(meaningOf)) {
        std::replace(meaning.begin(), meaning.end(), '\n', ' ');
        expected.append("| ").append(code).append(" | ").append(meaning).append(" |\n");
    }
    EXPECT_EQ(exitCodesOfReadme(test::fileText(ZEB_README)), expected);
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

}  // namespace
}  // namespace zeb::viewer
