#include <gtest/gtest.h>

#include <stdexcept>

#include "reader/backend/CheckedNumbers.h"

namespace zeb::profiling {
namespace {

// The number, or the exception and its text.
template <typename Convert>
std::string outcome(Convert convert, const std::string& text) {
    try {
        return std::to_string(convert(text));
    } catch (const std::invalid_argument& error) {
        return std::string("invalid_argument: ") + error.what();
    } catch (const std::out_of_range& error) {
        return std::string("out_of_range: ") + error.what();
    }
}

TEST(CheckedNumbers, ConvertOrThrowWithTheirOwnTexts) {
    const std::string noUnsigned = "invalid_argument: invalid stoull argument";
    const std::string unsignedRange = "out_of_range: stoull argument out of range";
    const std::string noSigned = "invalid_argument: invalid stoi argument";
    const std::string signedRange = "out_of_range: stoi argument out of range";
    const struct {
        const char* text;
        std::string asUnsigned64;
        std::string asSigned32;
    } cases[] = {
        {" \t\n+7.9 us", "7", "7"},
        {"0x10", "0", "0"},
        {"2147483647", "2147483647", "2147483647"},
        {"2147483648", "2147483648", signedRange},
        {"-2147483648", "18446744071562067968", "-2147483648"},
        {"-2147483649", "18446744071562067967", signedRange},
        {"18446744073709551615", "18446744073709551615", signedRange},
        {"18446744073709551616", unsignedRange, signedRange},
        {"-18446744073709551615", "1", signedRange},
        {"-18446744073709551616", unsignedRange, signedRange},
        {"\v\f\r-0", "0", "0"},
        {" ", noUnsigned, noSigned},
        {"-", noUnsigned, noSigned},
        {"+-1", noUnsigned, noSigned},
        {"- 1", noUnsigned, noSigned},
        {"\xA0"
         "1",
         noUnsigned, noSigned},
        {"us 7", noUnsigned, noSigned},
    };
    for (const auto& [text, asUnsigned64, asSigned32] : cases) {
        EXPECT_EQ(outcome(checkedUnsigned64, text), asUnsigned64) << text;
        EXPECT_EQ(outcome(checkedSigned32, text), asSigned32) << text;
    }
}

}  // namespace
}  // namespace zeb::profiling
