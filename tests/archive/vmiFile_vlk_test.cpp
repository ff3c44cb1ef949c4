// The catalogue parser over a catalogue element placed in the directory.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "archive/vmiVlkElement.h"
#include "tests/support/vlmWriter.h"

namespace {

// Parses text as catalogue element (type 2, number indx) and returns the records.
std::vector<const vmiVlkElement*> parse(vmiFile& f, const std::string& text, int indx = 0)
{
    char* buf = new char[text.size() + 1];
    std::memcpy(buf, text.data(), text.size());
    f.archive().add(new vmiArchiveElement("00000.vlk", buf, static_cast<int>(text.size()), vmiEntryKind::catalogue, indx));
    f.proc_vlk();
    std::vector<const vmiVlkElement*> out;
    for (const vmiVlkElement* e = f.catalogue().first(); e; e = e->next())
        out.push_back(e);
    return out;
}

} // namespace

TEST(ProcVlk, FirstLineStartingWithDashGivesAnEmptyHeader)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator("-").level1("A", "B").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->name0(), utString("A"));
}

TEST(ProcVlk, HeaderLinesBeforeTheSeparatorAreSkipped)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().header("VLK 1,2,3").header("x-y").separator().level2("G", "H").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->level(), 2);
    EXPECT_EQ(r[0]->name0(), utString("G"));
    EXPECT_EQ(r[0]->name1(), utString("H"));
}

TEST(ProcVlk, NoSeparatorLineMakesNoRecords)
{
    vmiFile f;
    EXPECT_TRUE(parse(f, vlm::catalogue().header("1,A,B").header("3,1,1").text()).empty());
}

TEST(ProcVlk, Level1LineGivesName0AndName1)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("1,Alpha,Beta").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->level(), 1);
    EXPECT_EQ(r[0]->name0(), utString("Alpha"));
    EXPECT_EQ(r[0]->name1(), utString("Beta"));
}

TEST(ProcVlk, CarriageReturnStaysInTheLastFieldOfACrLfLine)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("1,Alpha,Beta").raw("2,Gamma,Delta").text(true));
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0]->name1(), utString("Beta\r"));
    EXPECT_EQ(r[1]->name0(), utString("Gamma"));
    EXPECT_EQ(r[1]->name1(), utString("Delta\r"));
}

TEST(ProcVlk, LevelFieldIgnoresNonDigits)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("x3,1,7,8,101,2020,N,0,C,0,42").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->level(), 3);
    EXPECT_EQ(r[0]->indx(), 7);
}

TEST(ProcVlk, Level3RecordTakesItsFieldsInOrder)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("3, 1,12,11,101,2021-03-04,Name,99,a comment,98,00042,extra,more").text());
    ASSERT_EQ(r.size(), 1u);
    const vmiVlkElement& e = *r[0];
    EXPECT_EQ(e.type1(), 1);
    EXPECT_EQ(e.indx(), 12);
    EXPECT_EQ(e.ref_indx(), 11);
    EXPECT_EQ(e.type2(), 101);
    EXPECT_EQ(e.date(), utString("2021-03-04"));
    EXPECT_EQ(e.name1(), utString("Name"));
    EXPECT_EQ(e.comment(), utString("a comment"));
    EXPECT_EQ(e.data_indx(), 42);
}

TEST(ProcVlk, ShortLineNeverBorrowsFieldsFromTheNextLine)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("3,1,5").raw("1,A,B").raw("2").text());
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0]->level(), 3);
    EXPECT_EQ(r[0]->indx(), 5);
    EXPECT_EQ(r[0]->ref_indx(), 0);
    EXPECT_TRUE(r[0]->date().empty());
    EXPECT_EQ(r[0]->data_indx(), 0);
    EXPECT_EQ(r[1]->level(), 1);
    EXPECT_EQ(r[1]->name0(), utString("A"));
    EXPECT_EQ(r[2]->level(), 2);
    EXPECT_TRUE(r[2]->name0().empty());
}

TEST(ProcVlk, EmptyLineIsSkippedInsteadOfStandingStill)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().level1("A", "B").raw("").level2("C", "D").text());
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0]->level(), 1);
    EXPECT_EQ(r[1]->level(), 2);
    EXPECT_EQ(r[1]->name0(), utString("C"));
}

TEST(ProcVlk, EmptyCrLfLineIsSkippedInsteadOfStandingStill)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().level1("A", "B").raw("").level2("C", "D").text(true));
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[1]->name0(), utString("C"));
}

TEST(ProcVlk, LoneUnknownLevelIsSkippedInsteadOfStandingStill)
{
    vmiFile f;
    const auto r = parse(f, vlm::catalogue().separator().raw("7").raw("1,A,B").raw("x").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->name0(), utString("A"));
}

TEST(ProcVlk, UnknownLevelFollowedByAFieldReadsThatFieldAsTheLevel)
{
    vmiFile f;
    // "9," is passed over and "1" is read as the level of a level-1 record.
    const auto r = parse(f, vlm::catalogue().separator().raw("9,1,A,B").text());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->level(), 1);
    EXPECT_EQ(r[0]->name0(), utString("A"));
    EXPECT_EQ(r[0]->name1(), utString("B"));
}

TEST(ProcVlk, LastLineWithoutLineFeedIsRead)
{
    vmiFile f;
    const auto r = parse(f, "-\n1,A,B\n2,C,D");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[1]->name1(), utString("D"));
}

TEST(ProcVlk, CatalogueNumberedOtherThanZeroIsNotFound)
{
    vmiFile f;
    EXPECT_TRUE(parse(f, vlm::catalogue().separator().level1("A", "B").text(), 1).empty());
}

TEST(ProcVlk, NoCatalogueElementMakesNoRecords)
{
    vmiFile f;
    f.proc_vlk();
    EXPECT_EQ(f.catalogue().first(), nullptr);
}

TEST(VlkFields, FieldStopsAtCommaWhichItConsumesAndAtLineFeedWhichItLeaves)
{
    vmiFile f;
    char text[] = " ab ,\r12\nrest";
    f.init_vlk(text, static_cast<int>(std::strlen(text)));
    EXPECT_EQ(f.get_vlk_str(), utString(" ab "));
    EXPECT_EQ(f.get_vlk_int(), 12);       // "\r12": the carriage return is no digit
    EXPECT_EQ(f.is_vlk_char('\n'), 1);    // the line feed is left
    EXPECT_EQ(f.get_vlk_str(), utString(""));
    EXPECT_EQ(f.is_vlk_char('\n'), 1);    // and every further field is empty
    f.pass_vlk_str();
    EXPECT_EQ(f.get_vlk_str(), utString("rest"));
    EXPECT_EQ(f.is_vlk_end(), 1);
    EXPECT_EQ(f.get_vlk_int(), 0);        // at the end: an empty field
}

TEST(VlkFields, PassVlkNeverPassesTheEnd)
{
    vmiFile f;
    char text[] = "abc";
    f.init_vlk(text, 3);
    f.pass_vlk(2);
    EXPECT_EQ(f.is_vlk_char('c'), 1);
    f.pass_vlk(100);
    EXPECT_EQ(f.is_vlk_end(), 1);
    EXPECT_EQ(f.is_vlk_char('c'), 0);
    f.pass_vlk_str();
    EXPECT_EQ(f.is_vlk_end(), 1);
}

TEST(VlkFields, PassVlkStrSkipsACarriageReturnAfterTheLineFeed)
{
    vmiFile f;
    // Records separated by "\n\r": the carriage return goes with the line feed.
    const auto r = parse(f, "-\n\r1,A,B\n\r2,C,D\n\r");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0]->name1(), utString("B"));
    EXPECT_EQ(r[1]->name0(), utString("C"));
}

TEST(VlkFields, GetVlkStrKeepsSpacesAndGetVlkIntReadsDigitsOnly)
{
    vmiFile f;
    const auto r = parse(f, "-\n2, spaced name , 12 \n");
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0]->name0(), utString(" spaced name "));
    EXPECT_EQ(r[0]->name1(), utString(" 12 "));
}
