// Utf8: which byte sequences a name keeps as characters.
#include "cli/Utf8.h"

#include <gtest/gtest.h>

#include <string_view>

TEST(Utf8, SequenceLength_AsciiIsOneByte)
{
    EXPECT_EQ(Utf8::sequence_length("a", 0), 1u);
    EXPECT_EQ(Utf8::sequence_length(std::string_view("\0", 1), 0), 1u);
    EXPECT_EQ(Utf8::sequence_length("\x7F", 0), 1u);
}

TEST(Utf8, SequenceLength_ValidSequencesOfTwoThreeAndFourBytes)
{
    EXPECT_EQ(Utf8::sequence_length("\xC3\x9F", 0), 2u);          // U+00DF
    EXPECT_EQ(Utf8::sequence_length("\xE0\xA0\x80", 0), 3u);      // U+0800, the least of three bytes
    EXPECT_EQ(Utf8::sequence_length("\xED\x9F\xBF", 0), 3u);      // U+D7FF, just below the surrogates
    EXPECT_EQ(Utf8::sequence_length("\xF0\x90\x80\x80", 0), 4u);  // U+10000, the least of four bytes
    EXPECT_EQ(Utf8::sequence_length("\xF4\x8F\xBF\xBF", 0), 4u);  // U+10FFFF, the last code point
    EXPECT_EQ(Utf8::sequence_length("x\xC3\x9F", 1), 2u);
}

TEST(Utf8, SequenceLength_OverlongFormsAreNotValid)
{
    EXPECT_EQ(Utf8::sequence_length("\xC0\x80", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xC1\xBF", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xE0\x9F\xBF", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xF0\x8F\xBF\xBF", 0), 0u);
}

TEST(Utf8, SequenceLength_SurrogatesAndValuesPastTheLastCodePointAreNotValid)
{
    EXPECT_EQ(Utf8::sequence_length("\xED\xA0\x80", 0), 0u);      // U+D800
    EXPECT_EQ(Utf8::sequence_length("\xF4\x90\x80\x80", 0), 0u);  // U+110000
    EXPECT_EQ(Utf8::sequence_length("\xF5\x80\x80\x80", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xFF", 0), 0u);
}

TEST(Utf8, SequenceLength_StrayOrCutOffBytesAreNotValid)
{
    EXPECT_EQ(Utf8::sequence_length("\x80", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xC3", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xE2\x82", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xC3" "a", 0), 0u);
    EXPECT_EQ(Utf8::sequence_length("\xE2\x82" "a", 0), 0u);
}

TEST(Utf8, FromBytes_KeepsValidTextAndReadsOtherBytesAsLatin1)
{
    EXPECT_EQ(Utf8::from_bytes("Fu\xC3\x9F"), "Fu\xC3\x9F");
    EXPECT_EQ(Utf8::from_bytes("Fu\xDF"), "Fu\xC3\x9F");
    EXPECT_EQ(Utf8::from_bytes("\xE2\x82"), "\xC3\xA2\xC2\x82");
    EXPECT_EQ(Utf8::from_bytes(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}
