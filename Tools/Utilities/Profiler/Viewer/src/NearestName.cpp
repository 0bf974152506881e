#include "NearestName.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <string_view>

namespace zeb::viewer {

namespace {

// Dashes in front and the case of letters say nothing about what was meant.
std::string withoutDashesInLowerCase(const std::string& name) {
    std::string letters = name.substr(std::min(name.find_first_not_of('-'), name.size()));
    std::transform(letters.begin(), letters.end(), letters.begin(), [](char letter) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    });
    return letters;
}

// Insertions, deletions and replacements that it takes to come from one to the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : from) {
        std::size_t diagonal = row.front()++;
        for (std::size_t column = 0; column < to.size(); ++column) {
            const std::size_t replaced = diagonal + (letter == to[column] ? 0 : 1);
            diagonal = row[column + 1];
            row[column + 1] = std::min({replaced, diagonal + 1, row[column] + 1});
        }
    }
    return row.back();
}

std::size_t distance(const std::string& given, const std::string& known) {
    return !given.empty() && known.starts_with(given) ? 0 : editDistance(given, known);
}

}  // namespace

std::optional<std::string> nearestName(const std::string& name, const std::vector<std::string>& knownNames) {
    const std::string given = withoutDashesInLowerCase(name);
    // Up to two slips, three in a long name, and never all of it.
    std::size_t nearest = std::min(given.size(), std::max<std::size_t>(3, given.size() / 3 + 1));
    std::optional<std::string> result;
    for (const std::string& known : knownNames) {
        if (const std::size_t apart = distance(given, withoutDashesInLowerCase(known)); apart < nearest) {
            nearest = apart;
            result = known;
        }
    }
    return result;
}

}  // namespace zeb::viewer
