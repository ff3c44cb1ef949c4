#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

#include "cli/JsonWriter.h"
#include "tests/support/testGeometry.h"

namespace {

double read_back(const std::string& text) { return std::strtod(text.c_str(), nullptr); }


} // namespace

TEST(JsonString, AsciiIsQuotedUnchanged)
{
    EXPECT_EQ(json_string("Alpha Beta"), "\"Alpha Beta\"");
    EXPECT_EQ(json_string(""), "\"\"");
}

TEST(JsonString, QuoteAndBackslashAreEscaped)
{
    EXPECT_EQ(json_string("a\"b\\c"), "\"a\\\"b\\\\c\"");
}

TEST(JsonString, CarriageReturnStaysBackslashR)
{
    EXPECT_EQ(json_string("Beta\r"), "\"Beta\\r\"");
}

TEST(JsonString, ControlCharactersAreEscaped)
{
    EXPECT_EQ(json_string(std::string("\n\t\b\f\x01\x1f", 6)), "\"\\n\\t\\b\\f\\u0001\\u001f\"");
    EXPECT_EQ(json_string(std::string("a\0b", 3)), "\"a\\u0000b\"");
}

TEST(JsonString, DeleteCharacterIsWrittenAsItIs)
{
    EXPECT_EQ(json_string("\x7f"), "\"\x7f\"");
}

TEST(JsonString, ValidUtf8StaysTheCharacters)
{
    EXPECT_EQ(json_string("\xc3\xa9t\xc3\xa9"), "\"\xc3\xa9t\xc3\xa9\"");           // 2 bytes
    EXPECT_EQ(json_string("\xe2\x82\xac"), "\"\xe2\x82\xac\"");                     // 3 bytes
    EXPECT_EQ(json_string("\xf0\x9f\x98\x80"), "\"\xf0\x9f\x98\x80\"");             // 4 bytes
    EXPECT_EQ(json_string("\xf4\x8f\xbf\xbf"), "\"\xf4\x8f\xbf\xbf\"");             // U+10FFFF
}

TEST(JsonString, LoneHighByteBecomesItsOwnValue)
{
    EXPECT_EQ(json_string("G\xffx"), "\"G\\u00ffx\"");
    EXPECT_EQ(json_string("\xe9"), "\"\\u00e9\"");   // Latin-1 e acute is not UTF-8
}

TEST(JsonString, TruncatedSequenceIsEscapedByteByByte)
{
    EXPECT_EQ(json_string("\xe2\x82"), "\"\\u00e2\\u0082\"");
    EXPECT_EQ(json_string("\xe2\x82x"), "\"\\u00e2\\u0082x\"");
}

TEST(JsonString, OverlongFormIsNotUtf8)
{
    EXPECT_EQ(json_string("\xc0\xaf"), "\"\\u00c0\\u00af\"");
    EXPECT_EQ(json_string("\xe0\x80\xaf"), "\"\\u00e0\\u0080\\u00af\"");
}

TEST(JsonString, SurrogateCodePointIsNotUtf8)
{
    EXPECT_EQ(json_string("\xed\xa0\x80"), "\"\\u00ed\\u00a0\\u0080\"");
}

TEST(JsonString, CodePointAboveUnicodeIsNotUtf8)
{
    EXPECT_EQ(json_string("\xf4\x90\x80\x80"), "\"\\u00f4\\u0090\\u0080\\u0080\"");
    EXPECT_EQ(json_string("\xf5\x80\x80\x80"), "\"\\u00f5\\u0080\\u0080\\u0080\"");
}

TEST(JsonNumber, IntegralDoubleKeepsADecimalPoint)
{
    EXPECT_EQ(json_number(1.0), "1.0");
    EXPECT_EQ(json_number(-3.0), "-3.0");
    EXPECT_EQ(json_number(0.0), "0.0");
}

TEST(JsonNumber, NegativeZeroKeepsItsSign)
{
    EXPECT_EQ(json_number(-0.0), "-0.0");
    EXPECT_TRUE(std::signbit(read_back(json_number(-0.0))));
}

TEST(JsonNumber, ShortestFormIsUsed)
{
    EXPECT_EQ(json_number(0.1), "0.1");
    EXPECT_EQ(json_number(-1000000000.0 * 0.25), "-2.5e+08");   // shorter than -250000000.0
    EXPECT_EQ(json_number(123456.0), "123456.0");
    EXPECT_EQ(json_number(1e300), "1e+300");
}

TEST(JsonNumber, NonFiniteValuesAreStrings)
{
    EXPECT_EQ(json_number(std::numeric_limits<double>::quiet_NaN()), "\"NaN\"");
    EXPECT_EQ(json_number(std::numeric_limits<double>::infinity()), "\"Infinity\"");
    EXPECT_EQ(json_number(-std::numeric_limits<double>::infinity()), "\"-Infinity\"");
}

TEST(JsonNumber, ExtremesReadBackExactly)
{
    for (double v : {std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::min(),
                     std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
                     std::numeric_limits<double>::epsilon(), 1.0 / 3.0, double(float(0.1f))}) {
        EXPECT_TRUE(same_bits(read_back(json_number(v)), v)) << json_number(v);
    }
}

TEST(JsonNumber, RandomBitPatternsReadBackExactly)
{
    std::mt19937_64 rng(12345);
    int checked = 0;
    while (checked < 100000) {
        const std::uint64_t bits = rng();
        double v;
        std::memcpy(&v, &bits, sizeof v);
        if (!std::isfinite(v)) continue;
        ASSERT_TRUE(same_bits(read_back(json_number(v)), v)) << json_number(v);
        ++checked;
    }
}

TEST(JsonWriter, CompactDocumentHasNoSpaces)
{
    std::ostringstream out;
    JsonWriter w(out, false);
    w.begin_object();
    w.key("a").integer(-7);
    w.key("b").begin_array().number(1.5).boolean(true).null().string("x").end_array();
    w.key("c").begin_object().end_object();
    w.end_object();
    w.finish();
    EXPECT_EQ(out.str(), "{\"a\":-7,\"b\":[1.5,true,null,\"x\"],\"c\":{}}\n");
}

TEST(JsonWriter, PrettyDocumentIndentsByTwoSpaces)
{
    std::ostringstream out;
    JsonWriter w(out);
    w.begin_object();
    w.key("a").integer(1);
    w.key("b").begin_array().integer(2).integer(3).end_array();
    w.key("e").begin_array().end_array();
    w.end_object();
    w.finish();
    EXPECT_EQ(out.str(), "{\n  \"a\": 1,\n  \"b\": [\n    2,\n    3\n  ],\n  \"e\": []\n}\n");
}

TEST(JsonWriter, SingleLineContainerKeepsItsContentOnOneLine)
{
    std::ostringstream out;
    JsonWriter w(out);
    w.begin_array();
    w.begin_object(true).key("p").begin_array().number(1.0).number(2.0).end_array().key("q").null().end_object();
    w.begin_array(true).integer(1).integer(2).end_array();
    w.end_array();
    w.finish();
    EXPECT_EQ(out.str(), "[\n  {\"p\": [1.0, 2.0], \"q\": null},\n  [1, 2]\n]\n");
}

TEST(JsonWriter, FinishClosesWhatIsOpen)
{
    std::ostringstream out;
    JsonWriter w(out, false);
    w.begin_object().key("a").begin_array().integer(1);
    w.finish();
    EXPECT_EQ(out.str(), "{\"a\":[1]}\n");
}

TEST(JsonWriter, MismatchedCloseIsIgnored)
{
    std::ostringstream out;
    JsonWriter w(out, false);
    w.begin_array().end_object().integer(1).end_array();
    w.finish();
    EXPECT_EQ(out.str(), "[1]\n");
}

TEST(JsonWriter, KeysAreEscapedLikeStrings)
{
    std::ostringstream out;
    JsonWriter w(out, false);
    w.begin_object().key("a\"\xff").integer(0).end_object();
    w.finish();
    EXPECT_EQ(out.str(), "{\"a\\\"\\u00ff\":0}\n");
}

TEST(JsonWriter, LongDocumentReachesTheStreamWholeAndInOrder)
{
    // Far more than the writer gathers before it hands text to the stream.
    std::ostringstream out;
    std::string expected = "[";
    {
        JsonWriter w(out, false);
        w.begin_array();
        for (int k = 0; k < 100000; ++k) {
            w.integer(k);
            if (k > 0) expected += ',';
            expected += std::to_string(k);
        }
        w.finish();
    }
    EXPECT_EQ(out.str(), expected + "]\n");
}

TEST(JsonWriter, TextNotFinishedReachesTheStreamWhenTheWriterGoes)
{
    std::ostringstream out;
    {
        JsonWriter w(out, false);
        w.begin_array().integer(1);
    }
    EXPECT_EQ(out.str(), "[1");
}

TEST(JsonWriter, TripleIsWrittenAsASingleLineArrayOfItsThreeValues)
{
    // In both modes, after a first element and inside nested containers, a
    // triple reads exactly as the single-line array of its values.
    for (bool pretty : {true, false}) {
        std::ostringstream by_triple, by_values;
        {
            JsonWriter w(by_triple, pretty);
            w.begin_object().key("p").begin_array();
            w.triple(1.0, -0.0, 1e300).triple(std::nan(""), 0.1, -2.5);
            w.triple(std::int64_t{0}, std::int64_t{-7}, std::int64_t{2147483647});
            w.end_array().key("q").triple(std::int64_t{1}, std::int64_t{2}, std::int64_t{3});
            w.finish();
        }
        {
            JsonWriter w(by_values, pretty);
            w.begin_object().key("p").begin_array();
            w.begin_array(true).number(1.0).number(-0.0).number(1e300).end_array();
            w.begin_array(true).number(std::nan("")).number(0.1).number(-2.5).end_array();
            w.begin_array(true).integer(0).integer(-7).integer(2147483647).end_array();
            w.end_array().key("q").begin_array(true).integer(1).integer(2).integer(3).end_array();
            w.finish();
        }
        EXPECT_EQ(by_triple.str(), by_values.str()) << (pretty ? "pretty" : "compact");
    }
    std::ostringstream compact;
    JsonWriter(compact, false).triple(std::int64_t{1}, std::int64_t{-2}, std::int64_t{3}).finish();
    EXPECT_EQ(compact.str(), "[1,-2,3]\n");
}
