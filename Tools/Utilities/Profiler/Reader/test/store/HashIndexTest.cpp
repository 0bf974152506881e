// The index by name, and the list that is searched with it.

#include <gtest/gtest.h>

#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/EventArena.h"
#include "store/HashIndex.h"
#include "store/NamedList.h"
#include "support/AllocationFault.h"

namespace zeb::profiling {
namespace {

TEST(NameHash, SpreadsNamesAnewEachTime) {
    for (const auto makeSecret : {makeHashSecret, makeHashSecretWithoutSystem}) {
        const HashSecret one = makeSecret();
        const HashSecret other = makeSecret();
        EXPECT_NE(one.first, other.first);
        EXPECT_NE(one.second, other.second);
        EXPECT_NE(one.first, one.second);
    }
    const NameHash one;
    const NameHash other;
    EXPECT_NE(std::pair(one("name"), one("a name of more than two words")),
              std::pair(other("name"), other("a name of more than two words")));
    EXPECT_EQ(one("name"), one(std::string("name")));
}

TEST(NameHash, TakesEveryByteAndTheLengthAndNothingBehind) {
    const NameHash hash;
    std::set<std::uint32_t> hashes;
    std::size_t texts = 0;
    for (std::size_t length = 0; length <= 40; ++length) {
        std::string text(length, '\0');
        hashes.insert(hash(text));
        ++texts;
        for (char& byte : text) {
            byte = '\x01';
            hashes.insert(hash(text));
            ++texts;
            byte = '\0';
        }
    }
    EXPECT_EQ(hashes.size(), texts) << "a byte can't make up for another length";
    for (std::size_t length = 0; length <= 40; ++length) {
        for (std::size_t at = 0; at < 8; ++at) {
            const std::string first = std::string(at, '<') + std::string(length, 'n') + "behind";
            EXPECT_EQ(hash(std::string_view(first).substr(at, length)), hash(std::string(length, 'n')));
        }
    }
}

// A list that compares as it is told to, and its index.
class Names {
    [[nodiscard]] auto isNamed(const std::string& name) const {
        return [this, &name](std::uint32_t position) { return names.at(position) == name; };
    }

public:
    std::uint32_t findOrAdd(const std::string& name) {
        return index_.findOrAdd(name, isNamed(name), [&] { names.push_back(name); });
    }
    [[nodiscard]] bool contains(const std::string& name) const {
        return index_.contains(name, isNamed(name));
    }
    // Adds an entry whatever is there already: all of them meet in one place.
    std::uint32_t addAnother(const std::string& name) {
        return index_.findOrAdd(
            name, [](std::uint32_t) { return false; }, [&] { names.push_back(name); });
    }
    [[nodiscard]] std::uint32_t find(const std::string& name, std::uint32_t position) {
        const auto isIt = [position](std::uint32_t other) { return other == position; };
        return index_.findOrAdd(name, isIt, [] { throw std::logic_error("not found"); });
    }

    std::vector<std::string> names;

private:
    HashIndex index_;
};

TEST(HashIndex, FindsWhatWasAddedHoweverOftenItGrew) {
    constexpr std::uint32_t count = 50'000;
    Names index;
    EXPECT_FALSE(index.contains(""));
    for (std::uint32_t number = 0; number < count; ++number) {
        const std::string name = std::to_string(number);
        ASSERT_FALSE(index.contains(name));
        ASSERT_EQ(index.findOrAdd(name), number);
        ASSERT_TRUE(index.contains(name));
    }
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_EQ(index.findOrAdd(std::to_string(number)), number);
    }
    EXPECT_EQ(index.names.size(), count);
}

// They begin at a slot by chance, so that some go on from the last slot to the first.
TEST(HashIndex, TellsApartThoseThatMeet) {
    for (const std::uint32_t count : {9U, 10U, 40U, 100U, 150U, 1000U}) {
        for (int attempt = 0; attempt < 10; ++attempt) {
            Names index;
            for (std::uint32_t number = 0; number < count; ++number) {
                ASSERT_EQ(index.addAnother("name"), number);
                ASSERT_EQ(index.find("name", number / 2), number / 2);
            }
            for (std::uint32_t number = 0; number < count; ++number) {
                ASSERT_EQ(index.find("name", number), number);
            }
            EXPECT_FALSE(index.contains("other"));
        }
    }
}

TEST(HashIndex, ForgetsAnEntryThatCouldNotBeAdded) {
    HashIndex index;
    const auto never = [](std::uint32_t) { return true; };
    for (int attempt = 0; attempt < 100; ++attempt) {
        EXPECT_THROW(index.findOrAdd("name", never, [] { throw std::runtime_error("full"); }),
                     std::runtime_error);
        EXPECT_FALSE(index.contains("name", never));
    }
    EXPECT_EQ(index.findOrAdd("name", never, [] {}), 0U);
}

struct Named {
    int number = 0;
    StoredText name;
};
using List = NamedList<Named, &Named::name>;

TEST(NamedList, IsAsItWasAfterEachAllocationThatFails) {
    constexpr std::uint32_t count = 3000;
    EventArena arena;
    List list;
    std::size_t failures = 0;
    for (std::uint32_t number = 0; number < count; ++number) {
        const std::string name = "name " + std::to_string(number);
        const auto make = [&] { return Named{static_cast<int>(number), arena.keepText(name)}; };
        for (std::size_t failing = 1;; ++failing) {
            const test::AllocationFault fault(failing, test::FaultKind::single);
            try {
                ASSERT_EQ(list.findOrAdd(name, make), number);
                break;
            } catch (const std::bad_alloc&) {
                ++failures;
                ASSERT_EQ(list.size(), number);
            }
        }
        const auto unwanted = [] { return Named{-1, {}}; };
        ASSERT_EQ(list.findOrAdd("name " + std::to_string(number / 2), unwanted), number / 2);
    }
    EXPECT_GT(failures, 20U);
    int number = 0;
    for (const Named& entry : list) {
        EXPECT_EQ(entry.number, number);
        EXPECT_EQ(entry.name.text(), "name " + std::to_string(number++));
    }
}

}  // namespace
}  // namespace zeb::profiling
