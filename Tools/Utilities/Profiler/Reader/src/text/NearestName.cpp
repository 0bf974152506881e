#include "text/NearestName.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <string_view>

namespace zeb::profiling {

namespace {

// Dashes in front and the case of letters say nothing about what was meant.
std::string withoutDashesInLowerCase(const std::string& name) {
    std::string letters = name.substr(std::min(name.find_first_not_of('-'), name.size()));
    std::transform(letters.begin(), letters.end(), letters.begin(), [](char letter) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    });
    return letters;
}

// Insertions, deletions, replacements and swaps of neighbours that it takes to come from one to the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> beforeLast(to.size() + 1);
    std::vector<std::size_t> last(to.size() + 1);
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

std::size_t distance(const std::string& given, const std::string& known) {
    return !given.empty() && known.starts_with(given) ? 0 : editDistance(given, known);
}

}  // namespace

std::optional<std::string> nearestName(const std::string& name, const std::vector<std::string>& knownNames) {
    const std::string given = withoutDashesInLowerCase(name);
    // Up to two slips, three in a long name, and in a short one fewer than half of its letters.
    std::size_t nearest = std::min(given.size(), std::max<std::size_t>(3, given.size() / 3 + 1));
    std::optional<std::string> result;
    for (const std::string& known : knownNames) {
        const std::string letters = withoutDashesInLowerCase(known);
        const std::size_t apart = distance(given, letters);
        if (apart < nearest && 2 * apart < std::max(given.size(), letters.size())) {
            nearest = apart;
            result = known;
        }
    }
    return result;
}

}  // namespace zeb::profiling
