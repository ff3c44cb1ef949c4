#include "contour/vmiVelmCoReader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

// Drives the reader's primitive moves, which the document never calls directly.
class vmiVelmCoReaderProbe {
public:
    static int next_byte(vmiVelmCoReader& r) { return r.next_byte(); }
    static bool is_end(vmiVelmCoReader& r) { return r.is_end(); }
    static int test_char(vmiVelmCoReader& r, char c) { return r.test_char(c); }
    static int get_digit(vmiVelmCoReader& r) { return r.get_digit(); }
    static void pass(vmiVelmCoReader& r, int n) { r.pass(n); }
    static void pass_blank(vmiVelmCoReader& r) { r.pass_blank(); }
    static void pass_string(vmiVelmCoReader& r) { r.pass_string(); }
};

namespace {

using Probe = vmiVelmCoReaderProbe;

// A text and a reader over it; the text outlives the reader.
struct Text {
    explicit Text(std::string s) : bytes(std::move(s)), reader(bytes.data(), static_cast<int>(bytes.size())) {}
    std::string bytes;
    vmiVelmCoReader reader;
};

std::string take_text(vmiVelmCoReader& r)
{
    std::unique_ptr<char[]> t(r.get_text());
    return t ? std::string(t.get()) : std::string("<null>");
}

}  // namespace

// ---- construction ----

TEST(vmiVelmCoReader, Construct_NullDataHasStatusMinusOneAndReadsZero)
{
    vmiVelmCoReader r(nullptr, 10);
    EXPECT_EQ(r.status(), -1);
    EXPECT_TRUE(r.at_end());
    EXPECT_EQ(r.new_instruction(), 0);
    EXPECT_EQ(r.test_string("x"), 0);
    EXPECT_EQ(r.get_tint(), 0);
    EXPECT_EQ(r.get_tfloat(), 0.0);
    std::unique_ptr<double[]> f(r.get_tfloat_array(2));
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f[0], 0.0);
    EXPECT_EQ(f[1], 0.0);
    std::unique_ptr<int[]> i(r.get_tint_array(2));
    ASSERT_NE(i, nullptr);
    EXPECT_EQ(i[1], 0);
    EXPECT_EQ(r.get_tfloat_array(vmiVelmCoReader::short_array_count + 1), nullptr);
    EXPECT_EQ(take_text(r), "");
}

TEST(vmiVelmCoReader, Construct_LengthBelowOneHasStatusMinusOne)
{
    const char data[] = "0001\n";
    vmiVelmCoReader zero(data, 0);
    vmiVelmCoReader negative(data, -4);
    EXPECT_EQ(zero.status(), -1);
    EXPECT_EQ(negative.status(), -1);
    EXPECT_EQ(negative.new_instruction(), 0);
}

TEST(vmiVelmCoReader, Construct_OverDataIsReadyAtFirstByte)
{
    Text t("0001\n");
    EXPECT_EQ(t.reader.status(), 0);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, GetTfloat_StatusMinusOneReadsZero)
{
    vmiVelmCoReader r(nullptr, 0);
    EXPECT_EQ(r.get_tfloat(), 0.0);
}

// ---- primitive moves ----

TEST(vmiVelmCoReader, NextByte_SticksOnLastByte)
{
    Text t("ab");
    EXPECT_EQ(Probe::next_byte(t.reader), 1);
    EXPECT_EQ(t.reader.position(), 1);
    EXPECT_EQ(Probe::next_byte(t.reader), 0);
    EXPECT_EQ(t.reader.position(), 1);
    EXPECT_FALSE(Probe::is_end(t.reader));
}

TEST(vmiVelmCoReader, NextByte_FromTheEndStepsBackToLastByte)
{
    Text t("abc");
    Probe::pass(t.reader, 3);
    EXPECT_TRUE(Probe::is_end(t.reader));
    EXPECT_EQ(Probe::next_byte(t.reader), 0);
    EXPECT_EQ(t.reader.position(), 2);
}

TEST(vmiVelmCoReader, TestChar_MatchStepsMismatchStays)
{
    Text t("xy");
    EXPECT_EQ(Probe::test_char(t.reader, 'y'), 0);
    EXPECT_EQ(t.reader.position(), 0);
    EXPECT_EQ(Probe::test_char(t.reader, 'x'), 1);
    EXPECT_EQ(t.reader.position(), 1);
    // A match on the last byte sticks there.
    EXPECT_EQ(Probe::test_char(t.reader, 'y'), 1);
    EXPECT_EQ(t.reader.position(), 1);
}

TEST(vmiVelmCoReader, TestChar_AtTheEndNeverMatches)
{
    Text t("7");
    EXPECT_EQ(Probe::get_digit(t.reader), 7);
    EXPECT_TRUE(Probe::is_end(t.reader));
    EXPECT_EQ(Probe::test_char(t.reader, '7'), 0);
    EXPECT_TRUE(Probe::is_end(t.reader));
}

TEST(vmiVelmCoReader, GetDigit_LastDigitMovesToTheEnd)
{
    Text t("a42");
    EXPECT_EQ(Probe::get_digit(t.reader), -1);
    EXPECT_EQ(t.reader.position(), 0);
    Probe::next_byte(t.reader);
    EXPECT_EQ(Probe::get_digit(t.reader), 4);
    EXPECT_EQ(Probe::get_digit(t.reader), 2);
    EXPECT_TRUE(Probe::is_end(t.reader));
    EXPECT_EQ(Probe::get_digit(t.reader), -1);
}

TEST(vmiVelmCoReader, Pass_ClampsToTheEnd)
{
    Text t("abcdef");
    Probe::pass(t.reader, 2);
    EXPECT_EQ(t.reader.position(), 2);
    Probe::pass(t.reader, -1);
    EXPECT_EQ(t.reader.position(), 2);
    Probe::pass(t.reader, INT_MAX);
    EXPECT_EQ(t.reader.position(), 6);
    EXPECT_TRUE(Probe::is_end(t.reader));
}

TEST(vmiVelmCoReader, PassBlank_SkipsOnlySpaces)
{
    Text t("  \tx");
    Probe::pass_blank(t.reader);
    EXPECT_EQ(t.reader.position(), 2);
    Text cr("\r x");
    Probe::pass_blank(cr.reader);
    EXPECT_EQ(cr.reader.position(), 0);
}

TEST(vmiVelmCoReader, PassBlank_SpaceAsLastByteStopsThere)
{
    Text t("a   ");
    Probe::next_byte(t.reader);
    Probe::pass_blank(t.reader);
    EXPECT_EQ(t.reader.position(), 3);
    EXPECT_FALSE(Probe::is_end(t.reader));
}

TEST(vmiVelmCoReader, PassString_LeavesCursorAfterLineFeed)
{
    Text t("abc\r\ndef\n");
    Probe::pass_string(t.reader);
    EXPECT_EQ(t.reader.position(), 5);
}

TEST(vmiVelmCoReader, PassString_FinalLineFeedIsWhereTheCursorRests)
{
    Text t("abc\n");
    Probe::pass_string(t.reader);
    EXPECT_EQ(t.reader.position(), 3);
    Probe::pass_string(t.reader);
    EXPECT_EQ(t.reader.position(), 3);
}

TEST(vmiVelmCoReader, PassString_LastByteNeitherLineFeedNorDigitStopsThere)
{
    Text t("abc");
    Probe::pass_string(t.reader);
    EXPECT_EQ(t.reader.position(), 2);
    Probe::pass_string(t.reader);
    EXPECT_EQ(t.reader.position(), 2);
}

TEST(vmiVelmCoReader, PassString_AtTheEndDoesNothing)
{
    Text t("1");
    Probe::get_digit(t.reader);
    Probe::pass_string(t.reader);
    EXPECT_TRUE(Probe::is_end(t.reader));
}

// ---- instructions ----

TEST(vmiVelmCoReader, NewInstruction_FirstLineIsSkippedEvenWhenAnInstruction)
{
    Text t("0200 Rohlingsdaten\n0300 HPelotte\n");
    EXPECT_EQ(t.reader.new_instruction(), 300);
}

TEST(vmiVelmCoReader, NewInstruction_NumberThenSpaceThenKeyTest)
{
    Text t("0001\n0300 HPelotte\n");
    EXPECT_EQ(t.reader.new_instruction(), 300);
    EXPECT_EQ(t.reader.test_string("HPelotte"), 1);
}

TEST(vmiVelmCoReader, NewInstruction_NoSpaceAfterNumberIsZero)
{
    Text t("0001\n0300HPelotte\n");
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

TEST(vmiVelmCoReader, NewInstruction_LineNotStartingWithZeroIsZero)
{
    Text t("0001\n1300 HPelotte\n0300 HPunkt\n");
    EXPECT_EQ(t.reader.new_instruction(), 0);
    // The next call skips the refused line and goes on.
    EXPECT_EQ(t.reader.new_instruction(), 300);
}

TEST(vmiVelmCoReader, NewInstruction_BlanksAndSignMayFollowTheZero)
{
    Text t("0001\n0  101 x\n0-5 y\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.new_instruction(), -5);
}

TEST(vmiVelmCoReader, NewInstruction_OnlyOneSpaceIsConsumed)
{
    Text t("0001\n0101  x=1\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("x="), 0);
    EXPECT_EQ(t.reader.test_string(" x="), 1);
}

TEST(vmiVelmCoReader, NewInstruction_SkipsTheRestOfTheCurrentLine)
{
    Text t("0001\n0101 name=sole and more\n0101 count=3\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("name="), 1);
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("count="), 1);
    EXPECT_EQ(t.reader.get_tint(), 3);
}

TEST(vmiVelmCoReader, NewInstruction_AfterFinalLineFeedIsZeroRestingOnIt)
{
    Text t("0001\n0101 x=5\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.new_instruction(), 0);
    EXPECT_EQ(t.reader.position(), static_cast<int>(t.bytes.size()) - 1);
    EXPECT_EQ(t.reader.new_instruction(), 0);
    EXPECT_EQ(t.reader.position(), static_cast<int>(t.bytes.size()) - 1);
}

TEST(vmiVelmCoReader, NewInstruction_DigitAsLastByteMovesToEndThenZero)
{
    Text t("0001\n0101 x=7");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("x="), 1);
    EXPECT_EQ(t.reader.get_tint(), 7);
    EXPECT_TRUE(t.reader.at_end());
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

TEST(vmiVelmCoReader, NewInstruction_LastLineWithoutLineFeedEndsWithoutHanging)
{
    Text t("0001\n0101 name=sole");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.new_instruction(), 0);
    EXPECT_EQ(t.reader.position(), static_cast<int>(t.bytes.size()) - 1);
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

TEST(vmiVelmCoReader, NewInstruction_LastByteZeroIsNoInstruction)
{
    Text t("0001\n0");
    EXPECT_EQ(t.reader.new_instruction(), 0);
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

TEST(vmiVelmCoReader, NewInstruction_NumberThenSpaceAsLastBytes)
{
    Text t("0001\n05 ");
    EXPECT_EQ(t.reader.new_instruction(), 5);
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

// ---- keys ----

TEST(vmiVelmCoReader, TestString_IsAPrefixTest)
{
    Text t("0001\n0300 HPelotteS\n");
    t.reader.new_instruction();
    EXPECT_EQ(t.reader.test_string("HPelotte"), 1);
    EXPECT_EQ(t.reader.test_string("S"), 1);
}

TEST(vmiVelmCoReader, TestString_MismatchLeavesTheCursor)
{
    Text t("count=3");
    EXPECT_EQ(t.reader.test_string("Count="), 0);
    EXPECT_EQ(t.reader.test_string("counts"), 0);
    EXPECT_EQ(t.reader.position(), 0);
    EXPECT_EQ(t.reader.test_string("count="), 1);
    EXPECT_EQ(t.reader.position(), 6);
}

TEST(vmiVelmCoReader, TestString_NullOrEmptyIsZero)
{
    Text t("abc");
    EXPECT_EQ(t.reader.test_string(nullptr), 0);
    EXPECT_EQ(t.reader.test_string(""), 0);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, TestString_KeyLongerThanTheRestIsZero)
{
    Text t("xSp");
    EXPECT_EQ(t.reader.test_string("xSpl="), 0);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, TestString_MatchUpToTheLastByteReachesTheEnd)
{
    Text t("0999");
    EXPECT_EQ(t.reader.test_string("0999"), 1);
    EXPECT_TRUE(t.reader.at_end());
}

// ---- integers ----

TEST(vmiVelmCoReader, GetTint_BlankBetweenSignAndDigitIsZero)
{
    Text t("- 7");
    EXPECT_EQ(t.reader.get_tint(), 0);
    // The sign stays consumed.
    EXPECT_EQ(t.reader.position(), 1);
}

TEST(vmiVelmCoReader, GetTint_PlusSignIsAccepted)
{
    Text t("+7");
    EXPECT_EQ(t.reader.get_tint(), 7);
}

TEST(vmiVelmCoReader, GetTint_LeadingBlanksSkippedTrailingKept)
{
    Text t("   -42  ,");
    EXPECT_EQ(t.reader.get_tint(), -42);
    EXPECT_EQ(t.reader.position(), 6);
}

TEST(vmiVelmCoReader, GetTint_NoDigitIsZeroAndCursorStaysOnIt)
{
    Text t("abc");
    EXPECT_EQ(t.reader.get_tint(), 0);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, GetTint_StopsAtPoint)
{
    Text t("12.5");
    EXPECT_EQ(t.reader.get_tint(), 12);
    EXPECT_EQ(t.reader.test_string(".5"), 1);
}

TEST(vmiVelmCoReader, GetTint_OverflowWrapsIn32Bits)
{
    Text a("4294967297");
    EXPECT_EQ(a.reader.get_tint(), 1);
    Text b("2147483648");
    EXPECT_EQ(b.reader.get_tint(), INT_MIN);
    Text c("-2147483648");
    EXPECT_EQ(c.reader.get_tint(), INT_MIN);
}

// ---- decimal numbers ----

TEST(vmiVelmCoReader, GetTfloat_NegativeWithoutPointLosesItsSign)
{
    Text t("-12");
    EXPECT_EQ(t.reader.get_tfloat(), 12.0);
}

TEST(vmiVelmCoReader, GetTfloat_NegativeWithPointKeepsItsSign)
{
    Text t("-12.5");
    EXPECT_EQ(t.reader.get_tfloat(), -12.5);
}

TEST(vmiVelmCoReader, GetTfloat_LowerCaseExponent)
{
    Text t("1.5e2");
    EXPECT_EQ(t.reader.get_tfloat(), 150.0);
}

TEST(vmiVelmCoReader, GetTfloat_UpperCaseExponentIsLeftUnread)
{
    Text t("1.5E2");
    EXPECT_EQ(t.reader.get_tfloat(), 1.5);
    EXPECT_EQ(t.reader.test_string("E2"), 1);
}

TEST(vmiVelmCoReader, GetTfloat_NegativeExponentMultipliesByOneTenth)
{
    Text t("2.5e-1");
    double v = t.reader.get_tfloat();
    EXPECT_EQ(v, 2.5 * 0.1);
    EXPECT_EQ(v, 0.25);
}

TEST(vmiVelmCoReader, GetTfloat_ExponentTakesSignAndBlank)
{
    Text plus("1.0e+2");
    EXPECT_EQ(plus.reader.get_tfloat(), 100.0);
    Text blank("1.0e 2");
    EXPECT_EQ(blank.reader.get_tfloat(), 100.0);
    Text three("1.0e-3");
    EXPECT_EQ(three.reader.get_tfloat(), 1.0 * (0.1 * 0.1 * 0.1));
}

TEST(vmiVelmCoReader, GetTfloat_ExponentWithoutPointIsNeverSeen)
{
    Text t("2e3");
    EXPECT_EQ(t.reader.get_tfloat(), 2.0);
    EXPECT_EQ(t.reader.test_string("e3"), 1);
}

TEST(vmiVelmCoReader, GetTfloat_FractionAccumulatesDigitTimesWeight)
{
    Text t("3.14159");
    double fraction = 0.0;
    double weight = 0.1;
    for (int d : {1, 4, 1, 5, 9}) {
        fraction += d * weight;
        weight *= 0.1;
    }
    EXPECT_EQ(t.reader.get_tfloat(), (3.0 + fraction) * 1.0);
}

TEST(vmiVelmCoReader, GetTfloat_PointWithoutIntegerDigits)
{
    Text t("-.5");
    EXPECT_EQ(t.reader.get_tfloat(), -0.5);
}

TEST(vmiVelmCoReader, GetTfloat_TrailingBlanksSkippedOnlyAfterPoint)
{
    Text with_point("5.0   ,");
    with_point.reader.get_tfloat();
    EXPECT_EQ(with_point.reader.position(), 6);
    Text without_point("5   ,");
    without_point.reader.get_tfloat();
    EXPECT_EQ(without_point.reader.position(), 1);
}

TEST(vmiVelmCoReader, GetTfloat_HugeExponentsEndQuickly)
{
    auto started = std::chrono::steady_clock::now();
    Text big("1.0e2147483647");
    EXPECT_TRUE(std::isinf(big.reader.get_tfloat()));
    Text tiny("1.0e-2147483648");
    EXPECT_EQ(tiny.reader.get_tfloat(), 0.0);
    auto took = std::chrono::steady_clock::now() - started;
    EXPECT_LT(took, std::chrono::seconds(1));
}

TEST(vmiVelmCoReader, GetTfloat_ThousandsOfDigitsReadWithoutHarm)
{
    Text t(std::string(5000, '9') + "." + std::string(5000, '9') + "\n");
    EXPECT_TRUE(std::isinf(t.reader.get_tfloat()));
    EXPECT_EQ(t.reader.position(), 10001);
}

// ---- arrays ----

TEST(vmiVelmCoReader, GetTfloatArray_CommaSeparated)
{
    Text t("1.0,2.0,3.0\n");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(3));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 2.0);
    EXPECT_EQ(v[2], 3.0);
}

TEST(vmiVelmCoReader, GetTfloatArray_BlanksAroundCommasAfterPoints)
{
    Text t("1.0, 2.0 ,3.0\n");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(3));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 2.0);
    EXPECT_EQ(v[2], 3.0);
}

TEST(vmiVelmCoReader, GetTfloatArray_BlankBeforeCommaWithoutPointShiftsValues)
{
    Text t("1 ,2,3\n");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(3));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 0.0);
    EXPECT_EQ(v[2], 2.0);
    EXPECT_EQ(t.reader.test_string("3"), 1);
}

TEST(vmiVelmCoReader, GetTfloatArray_CountZeroIsNull)
{
    Text t("1.0,2.0\n");
    EXPECT_EQ(t.reader.get_tfloat_array(0), nullptr);
    EXPECT_EQ(t.reader.get_tint_array(0), nullptr);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, GetTfloatArray_NegativeCountIsNull)
{
    Text t("1.0,2.0\n");
    EXPECT_EQ(t.reader.get_tfloat_array(-3), nullptr);
    EXPECT_EQ(t.reader.get_tint_array(INT_MIN), nullptr);
    EXPECT_EQ(t.reader.position(), 0);
}

TEST(vmiVelmCoReader, GetTfloatArray_MissingValuesReadAsZeroAndNothingBeyond)
{
    Text t("0001\n0101 x=1.0,2.0\n0101 y=5.0\n");
    t.reader.new_instruction();
    t.reader.test_string("x=");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(4));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 2.0);
    EXPECT_EQ(v[2], 0.0);
    EXPECT_EQ(v[3], 0.0);
    // The next key line is untouched.
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("y="), 1);
    EXPECT_EQ(t.reader.get_tfloat(), 5.0);
}

TEST(vmiVelmCoReader, GetTfloatArray_ReadsExactlyCountValues)
{
    Text t("1.0,2.0,3.0,4.0\n");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(2));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[1], 2.0);
    EXPECT_EQ(t.reader.test_string("3.0"), 1);
}

TEST(vmiVelmCoReader, GetTfloatArray_AbsurdCountOnShortLineIsNullAndReadsNothing)
{
    Text t("0001\n0101 count=100000000\n0101 xSpl=1.0,2.0,3.0\n");
    t.reader.new_instruction();
    t.reader.test_string("count=");
    int count = t.reader.get_tint();
    EXPECT_EQ(count, 100000000);
    t.reader.new_instruction();
    t.reader.test_string("xSpl=");
    int before = t.reader.position();
    EXPECT_EQ(t.reader.get_tfloat_array(count), nullptr);
    EXPECT_EQ(t.reader.get_tint_array(count), nullptr);
    EXPECT_EQ(t.reader.position(), before);
}

TEST(vmiVelmCoReader, GetTfloatArray_ShortArrayOnShortLineReadsMissingValuesAsZero)
{
    const int n = vmiVelmCoReader::short_array_count;
    Text t("x=1.0,2.0\n0999 \n");
    t.reader.test_string("x=");
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(n));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 2.0);
    for (int i = 2; i < n; i++)
        EXPECT_EQ(v[i], 0.0) << "at " << i;
    EXPECT_EQ(t.reader.new_instruction(), 999);
}

TEST(vmiVelmCoReader, GetTfloatArray_NoValueIsReadAcrossALineEnd)
{
    Text t("1,2,\n3,4\n");
    std::unique_ptr<int[]> v(t.reader.get_tint_array(4));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 2);
    EXPECT_EQ(v[2], 0);
    EXPECT_EQ(v[3], 0);
    EXPECT_EQ(t.reader.position(), 4);
}

TEST(vmiVelmCoReader, GetTfloatArray_LongArrayMustFitItsLine)
{
    // 32 values in 64 bytes: a line that can hold up to 65 values.
    std::string line;
    for (int i = 0; i < 32; i++)
        line += "1,";
    Text fits(line + "\n0999 \n");
    std::unique_ptr<int[]> v(fits.reader.get_tint_array(65));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[31], 1);
    EXPECT_EQ(v[32], 0);
    EXPECT_EQ(v[64], 0);
    Text too_long(line + "\n0999 \n");
    EXPECT_EQ(too_long.reader.get_tint_array(66), nullptr);
    EXPECT_EQ(too_long.reader.get_tfloat_array(66), nullptr);
    EXPECT_EQ(too_long.reader.position(), 0);
}

TEST(vmiVelmCoReader, GetTfloatArray_HugeCountOnShortLineBeforeLongTextIsNull)
{
    // Plenty of text follows, but not on the array's own line.
    Text t("x=1.0,2.0\n" + std::string(3 << 20, '7'));
    t.reader.test_string("x=");
    EXPECT_EQ(t.reader.get_tfloat_array(vmiVelmCoReader::max_array_count), nullptr);
    EXPECT_EQ(t.reader.position(), 2);
}

TEST(vmiVelmCoReader, GetTfloatArray_ManyKeyLinesAskingHugeCountsStayFast)
{
    std::string text = "0001\n";
    for (int i = 0; i < 100000; i++)
        text += "0101 x=\n";
    Text t(text);
    auto started = std::chrono::steady_clock::now();
    int lines = 0;
    int arrays = 0;
    while (t.reader.new_instruction() == 101) {
        lines++;
        t.reader.test_string("x=");
        double* v = t.reader.get_tfloat_array(vmiVelmCoReader::max_array_count);
        arrays += v != nullptr;
        delete[] v;
    }
    EXPECT_EQ(lines, 100000);
    EXPECT_EQ(arrays, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

TEST(vmiVelmCoReader, GetTfloatArray_CountBeyondMaxArrayCountIsNull)
{
    const int cap = vmiVelmCoReader::max_array_count;
    std::string values;
    values.reserve(static_cast<size_t>(cap) * 2 + 4);
    for (int i = 0; i < cap + 1; i++)
        values += "1,";
    Text t(values);
    EXPECT_EQ(t.reader.get_tfloat_array(cap + 1), nullptr);
    EXPECT_EQ(t.reader.position(), 0);
    std::unique_ptr<double[]> v(t.reader.get_tfloat_array(cap));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[cap - 1], 1.0);
}

TEST(vmiVelmCoReader, GetTintArray_CommaSeparatedWithBlanks)
{
    Text t("3, -4,+5\n");
    std::unique_ptr<int[]> v(t.reader.get_tint_array(3));
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v[0], 3);
    EXPECT_EQ(v[1], -4);
    EXPECT_EQ(v[2], 5);
}

// ---- texts ----

TEST(vmiVelmCoReader, GetText_StopsBeforeLineFeedWithoutConsumingIt)
{
    Text t("0001\n0101 name=sole left\n0101 count=2\n");
    t.reader.new_instruction();
    t.reader.test_string("name=");
    EXPECT_EQ(take_text(t.reader), "sole left");
    EXPECT_EQ(t.reader.test_string("\n"), 1);
}

TEST(vmiVelmCoReader, GetText_StopsBeforeCarriageReturn)
{
    Text t("0001\r\n0101 name=sole\r\n0101 count=2\r\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    t.reader.test_string("name=");
    EXPECT_EQ(take_text(t.reader), "sole");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("count="), 1);
}

TEST(vmiVelmCoReader, GetText_LongerThan131IsCutAndTheRestSkipped)
{
    std::string name(300, 'n');
    Text t("0001\n0101 name=" + name + "\n0101 count=2\n");
    t.reader.new_instruction();
    t.reader.test_string("name=");
    std::string text = take_text(t.reader);
    EXPECT_EQ(text.size(), 131u);
    EXPECT_EQ(text, name.substr(0, 131));
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("count="), 1);
}

TEST(vmiVelmCoReader, GetText_LastLineWithoutLineEndRepeatsLastByte)
{
    Text t("0001\n0101 name=ab");
    t.reader.new_instruction();
    t.reader.test_string("name=");
    EXPECT_EQ(take_text(t.reader), "a" + std::string(130, 'b'));
}

TEST(vmiVelmCoReader, GetText_AtTheEndIsEmpty)
{
    Text t("7");
    t.reader.get_tint();
    ASSERT_TRUE(t.reader.at_end());
    EXPECT_EQ(take_text(t.reader), "");
}

TEST(vmiVelmCoReader, GetText_KeepsAnyByte)
{
    Text t(std::string("a\tb\xFF\x01z\n", 7));
    EXPECT_EQ(take_text(t.reader), std::string("a\tb\xFF\x01z", 6));
}

// ---- hostile texts ----

TEST(vmiVelmCoReader, LongLines_ThousandsOfCharactersArePassedOver)
{
    std::string junk(200000, 'x');
    Text t("0001 " + junk + "\n0101 " + junk + "\n0300 HPunkt\n");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.new_instruction(), 300);
    EXPECT_EQ(t.reader.test_string("HPunkt"), 1);
}

TEST(vmiVelmCoReader, ValidText_ParsesExactlyAsWritten)
{
    Text t("0001\n"
           "0200 Rohlingsdaten\n"
           "0101 name=sole\n"
           "0101 count=3\n"
           "0101 xSpl=1.5,-2.25,3.0e1\n"
           "0101 height1=-4.5\n"
           "0299 \n"
           "0999 \n");
    EXPECT_EQ(t.reader.new_instruction(), 200);
    EXPECT_EQ(t.reader.test_string("Rohlingsdaten"), 1);
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("name="), 1);
    EXPECT_EQ(take_text(t.reader), "sole");
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("count="), 1);
    int count = t.reader.get_tint();
    EXPECT_EQ(count, 3);
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("xSpl="), 1);
    std::unique_ptr<double[]> x(t.reader.get_tfloat_array(count));
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x[0], 1.5);
    EXPECT_EQ(x[1], -2.25);
    EXPECT_EQ(x[2], 30.0);
    EXPECT_EQ(t.reader.new_instruction(), 101);
    EXPECT_EQ(t.reader.test_string("height1="), 1);
    EXPECT_EQ(t.reader.get_tfloat(), -4.5);
    EXPECT_EQ(t.reader.new_instruction(), 299);
    EXPECT_EQ(t.reader.new_instruction(), 999);
    EXPECT_EQ(t.reader.new_instruction(), 0);
}

TEST(vmiVelmCoReader, RandomBytes_EveryLoopEndsWithinTheText)
{
    // Pseudo-random texts over the format's own alphabet, read the way the
    // document reads them: every loop over instructions must end, and every
    // call must stay inside the buffer (the sanitizer build checks the latter).
    const char alphabet[] = "0123456789 -+.,=e\n\rxE";
    unsigned state = 2463534242u;
    for (int round = 0; round < 2000; round++) {
        int len = 1 + static_cast<int>(state % 97);
        std::string s;
        for (int i = 0; i < len; i++) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            s += alphabet[state % (sizeof alphabet - 1)];
        }
        Text t(s);
        int steps = 0;
        while (t.reader.new_instruction() != 0 && steps < len + 2) {
            steps++;
            t.reader.test_string("x=");
            delete[] t.reader.get_tfloat_array(3);
            delete[] t.reader.get_tint_array(2);
            t.reader.get_tint();
            t.reader.get_tfloat();
            delete[] t.reader.get_text();
        }
        EXPECT_LE(steps, len) << "text: " << s;
    }
}
