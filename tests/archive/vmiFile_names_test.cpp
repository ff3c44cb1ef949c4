// Entry names and the numbers taken from text.
#include <gtest/gtest.h>

#include "archive/vmiFile.h"

namespace {
int number_of(const char* name, vmiEntryKind& type)
{
    vmiFile f;
    utString n(name);
    return f.check_arhive_file_name(n, type);
}
int hex8(const char* text)
{
    vmiFile f;
    return f.get_text8_int(const_cast<char*>(text));
}
} // namespace

TEST(CheckArhiveFileName, DataDotDatIsADataEntryNumberedZero)
{
    vmiEntryKind type = vmiEntryKind::other;
    EXPECT_EQ(number_of("data.dat", type), 0);
    EXPECT_EQ(type, vmiEntryKind::data);
}

TEST(CheckArhiveFileName, NumberIsTheFiveCharactersBeforeTheExtension)
{
    vmiEntryKind type = vmiEntryKind::other;
    EXPECT_EQ(number_of("XY00012.dat", type), 12);
    EXPECT_EQ(type, vmiEntryKind::data);
    EXPECT_EQ(number_of("ABCD00001.vlk", type), 1);
    EXPECT_EQ(type, vmiEntryKind::catalogue);
}

TEST(CheckArhiveFileName, NineCharactersOrFewerGiveNumberZero)
{
    vmiEntryKind type = vmiEntryKind::other;
    EXPECT_EQ(number_of("00000.vlk", type), 0);
    EXPECT_EQ(type, vmiEntryKind::catalogue);
    EXPECT_EQ(number_of("A12B3.dat", type), 0);
    EXPECT_EQ(type, vmiEntryKind::data);
}

TEST(CheckArhiveFileName, ExtensionIsCaseSensitiveAndOtherNamesAreTypeZero)
{
    vmiEntryKind type = vmiEntryKind::other;
    EXPECT_EQ(number_of("XY00012.DAT", type), 12);
    EXPECT_EQ(type, vmiEntryKind::other);
    EXPECT_EQ(number_of("notes.txt", type), 0);
    EXPECT_EQ(type, vmiEntryKind::other);
    // Exactly four characters: too short for an extension.
    EXPECT_EQ(number_of(".dat", type), 0);
    EXPECT_EQ(type, vmiEntryKind::other);
    EXPECT_EQ(number_of("", type), 0);
    EXPECT_EQ(type, vmiEntryKind::other);
}

TEST(CheckArhiveFileName, NonDigitsAmongTheNumberCharactersAreSkipped)
{
    vmiEntryKind type = vmiEntryKind::other;
    EXPECT_EQ(number_of("XX1a2b3.dat", type), 123);
}

TEST(GetTextInt, SkipsNonDigitsWithoutStoppingAndIgnoresSigns)
{
    vmiFile f;
    char text[] = " 1-2x3 ";
    EXPECT_EQ(f.get_text_int(text, 7), 123);
    char neg[] = "-42";
    EXPECT_EQ(f.get_text_int(neg, 3), 42);
}

TEST(GetTextInt, CountBelowOneGivesZero)
{
    vmiFile f;
    char text[] = "99";
    EXPECT_EQ(f.get_text_int(text, 0), 0);
    EXPECT_EQ(f.get_text_int(text, -5), 0);
}

TEST(GetTextInt, ReadsOnlyCountCharacters)
{
    vmiFile f;
    char text[] = "12345";
    EXPECT_EQ(f.get_text_int(text, 2), 12);
}

TEST(GetText8Int, LowerCaseHexLettersAreSkipped)
{
    EXPECT_EQ(hex8("0000000a"), 0);
    EXPECT_EQ(hex8("0000000A"), 10);
    EXPECT_EQ(hex8("000000fF"), 15);
}

TEST(GetText8Int, ReadsExactlyEightCharacters)
{
    EXPECT_EQ(hex8("000000109"), 16);
    EXPECT_EQ(hex8("0001 0 0"), 0x100);
}

TEST(GetText8Int, AllFsAreMinusOneAsA32BitSignedSize)
{
    EXPECT_EQ(hex8("FFFFFFFF"), -1);
    EXPECT_EQ(hex8("80000000"), INT32_MIN);
    EXPECT_EQ(hex8("7FFFFFFF"), INT32_MAX);
}
