#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "forms/json/JsonWriter.h"

namespace zeb::forms {
namespace {

template <typename Write>
std::string written(Write write, JsonStyle style = {}) {
    std::ostringstream out;
    JsonWriter json(out, style);
    write(json);
    json.flush();
    return out.str();
}

template <typename Value>
std::string jsonOf(const Value& value, JsonStyle style = {}) {
    return written([&value](JsonWriter& json) { json.value(value); }, style);
}

TEST(JsonWriter, EveryByteComesOutAsJsonTakesIt) {
    const struct {
        std::string text;
        std::string json;
    } cases[] = {
        {"", R"("")"},
        {"conv_1/relu é 層 \U0001F600", R"("conv_1/relu é 層 😀")"},
        {R"(say "a\b")", R"("say \"a\\b\"")"},
        {"a\nb\tc\r\b\f", R"("a\nb\tc\r\b\f")"},
        {std::string("\0\x1B[31m\x7F~", 8), R"("\u0000\u001b[31m\u007f~")"},
        // What a terminal obeys, and what turns the direction of a text or ends a line, and their neighbours.
        {"\u0080\u009B\u009F\u00A0", "\"\\u0080\\u009b\\u009f\u00A0\""},
        {"\u061B\u061C\u061D\u200D\u200E\u200F\u2010", "\"\u061B\\u061c\u061D\u200D\\u200e\\u200f\u2010\""},
        {"\u2027\u2028\u2029\u202A\u202E\u202F", "\"\u2027\\u2028\\u2029\\u202a\\u202e\u202F\""},
        {"\u2065\u2066\u2069\u206A", "\"\u2065\\u2066\\u2069\u206A\""},
        // Each fault is replaced, with as many bytes as could have begun a character.
        {"\x80z\xFFz", "\"\uFFFDz\uFFFDz\""},
        {"cut \xE5\xB1", "\"cut \uFFFD\""},
        {"\xE5\xB1z\xF0\x9F\x98z", "\"\uFFFDz\uFFFDz\""},
        {"too long \xC0\xAF\xE0\x80\xAF", "\"too long \uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\""},
        {"half \xED\xA0\x80", "\"half \uFFFD\uFFFD\uFFFD\""},
        {"last \xF4\x8F\xBF\xBF behind \xF4\x90\x80\x80",
         "\"last \U0010FFFF behind \uFFFD\uFFFD\uFFFD\uFFFD\""},
        {"\xE5(\xB1", "\"\uFFFD(\uFFFD\""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(jsonOf(text), expected);
        EXPECT_EQ(written([&text = text](JsonWriter& json) {
                      json.beginObject();
                      json.member(text, text);
                      json.endObject();
                  }),
                  '{' + expected + ':' + expected + '}');
    }
    EXPECT_EQ(jsonOf("<a>&"), R"("<a>&")");
    EXPECT_EQ(jsonOf("<a>&", jsonOfPage), R"("\u003ca\u003e\u0026")");
}

TEST(JsonWriter, NumbersComeOutShortAndExact) {
    constexpr JsonStyle bigAsText{.bigAsText = true};
    for (const JsonStyle style : {JsonStyle(), bigAsText}) {
        EXPECT_EQ(jsonOf(std::uint64_t{0}, style), "0");
        EXPECT_EQ(jsonOf(std::uint64_t{9'007'199'254'740'992U}, style), "9007199254740992");
        EXPECT_EQ(jsonOf(std::int64_t{-9'007'199'254'740'992}, style), "-9007199254740992");
        EXPECT_EQ(jsonOf(std::int8_t{-1}, style), "-1");
    }
    EXPECT_EQ(jsonOf(std::uint64_t{9'007'199'254'740'993U}), "9007199254740993");
    EXPECT_EQ(jsonOf(std::uint64_t{9'007'199'254'740'993U}, bigAsText), "\"9007199254740993\"");
    EXPECT_EQ(jsonOf(std::numeric_limits<std::int64_t>::min(), bigAsText), "\"-9223372036854775808\"");
    EXPECT_EQ(jsonOf(0.1F), "0.1");
    EXPECT_EQ(jsonOf(2100.0), "2100");
    EXPECT_EQ(jsonOf(-1.0e300), "-1e+300");
    EXPECT_EQ(jsonOf(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
    EXPECT_EQ(jsonOf(-std::numeric_limits<float>::infinity()), "\"-inf\"");
    const std::pair<double, const char*> reals[] = {{0.0, "0.0"},
                                                    {-0.0, "-0.0"},
                                                    {1.0, "1.0"},
                                                    {-2.5, "-2.5"},
                                                    {0.1, "0.1"},
                                                    {100000.0, "100000.0"},
                                                    {999999999999999.0, "999999999999999.0"},
                                                    {1e15, "1e+15"},
                                                    {1.5e22, "1.5e+22"},
                                                    {0.0001, "0.0001"},
                                                    {0.00012, "0.00012"},
                                                    {0.00001, "1e-05"},
                                                    {5e-324, "5e-324"},
                                                    {1.0 / 3.0, "0.3333333333333333"},
                                                    {std::numeric_limits<double>::infinity(), "null"},
                                                    {std::numeric_limits<double>::quiet_NaN(), "null"}};
    for (const auto& [number, expected] : reals) {
        EXPECT_EQ(written([number = number](JsonWriter& json) { json.real(number); }), expected);
    }
}

TEST(JsonWriter, PutsCommasAndLines) {
    const auto write = [](JsonWriter& json) {
        json.beginObject();
        json.member("a", true);
        json.key("b");
        json.beginList();
        for (const char* const text : {"x", "y"}) {
            json.breakLine();
            json.value(text);
        }
        json.null();
        json.beginList();
        json.endList();
        json.breakLine();
        json.endList();
        json.member("c", 1U);
        json.endObject();
    };
    EXPECT_EQ(written(write), "{\"a\":true,\"b\":[\n\"x\",\n\"y\",null,[]\n],\"c\":1}");
}

TEST(JsonWriter, HoldsAPieceAndCountsWhatIsGone) {
    constexpr std::size_t values = 10'000;
    std::ostringstream out;
    JsonWriter json(out);
    json.beginList();
    for (std::size_t number = 0; number < values; ++number) {
        json.value("0123456789");
    }
    EXPECT_GT(out.tellp(), 60'000);
    json.endList();
    EXPECT_EQ(json.flush(), 1 + values * 13);
    EXPECT_EQ(out.str().size(), 1 + values * 13);
}

}  // namespace
}  // namespace zeb::forms
