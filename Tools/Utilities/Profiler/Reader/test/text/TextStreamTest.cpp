#include <gtest/gtest.h>

#include <new>
#include <string>
#include <string_view>

#include "support/AllocationFault.h"
#include "support/TestReader.h"
#include "text/TextStream.h"

namespace zeb::profiling {
namespace {

// No two pieces of it are alike.
std::string longText(std::size_t size) {
    std::string text;
    for (std::size_t number = 0; text.size() < size; ++number) {
        text += std::to_string(number) + ' ';
    }
    return text.substr(0, size);
}

// The first block has 1024 bytes, and each next one twice as many, a megabyte at most.
TEST(TextStream, HoldsATextOverAllBlocksHoweverItComes) {
    const std::string text = longText(3'500'000);
    for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 3071U, 3072U, 3073U, 3'500'000U}) {
        const std::string_view part = std::string_view(text).substr(0, size);
        for (const std::size_t step : {1U, 1000U, 1024U, 3'000'000U}) {
            TextStream stream;
            for (std::string_view left = part; !left.empty();
                 left.remove_prefix(std::min(step, left.size()))) {
                if (step == 1) {
                    stream.put(left.front());
                } else {
                    stream << left.substr(0, step);
                }
            }
            EXPECT_TRUE(stream.str() == part) << size << " bytes, " << step << " at a time";
            const test::CaughtOutput output;
            stream.putOnStandardOutput();
            stream.putOnStandardOutput();
            EXPECT_TRUE(output.text() == std::string(part) + std::string(part));
        }
    }
}

TEST(TextStream, ThrowsWhereOthersLeaveOut) {
    const std::string text = longText(3'500'000);
    for (std::size_t failing = 1;; ++failing) {
        TextStream stream;
        bool isWhole = true;
        bool hasStruck = false;
        {
            const test::AllocationFault fault(failing, test::FaultKind::single);
            try {
                stream << text << 12345;
            } catch (const std::bad_alloc&) {
                isWhole = false;
            }
            hasStruck = fault.hasStruck();
        }
        ASSERT_NE(isWhole, hasStruck) << "no allocation fails without a word";
        const std::string kept = stream.str();
        if (isWhole) {
            EXPECT_TRUE(kept == text + "12345");
            EXPECT_GT(failing, 10U);
            break;
        }
        EXPECT_TRUE(text.starts_with(kept) && kept.size() < text.size());
    }
}

}  // namespace
}  // namespace zeb::profiling
