// CommandInputs: the checks of an option setting, a scale and an input file,
// and the one form of a message.
#include "cli/CommandInputs.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

TEST(CommandInputs, PluginOptionError_NoneForEveryOptionAtZeroAndOne)
{
    for (const char* name : {"vmiOptProcessScanData", "vmiOptProcessImageData", "vmiOptProcessOrthoticData"})
        for (const char* value : {"=0", "=1"}) EXPECT_EQ(CommandInputs::plugin_option_error(name + std::string(value)), "");
}

TEST(CommandInputs, PluginOptionError_NamesTheRefusedText)
{
    const std::string expected = ": expected vmiOptProcessScanData, vmiOptProcessImageData or vmiOptProcessOrthoticData =0 or =1";
    for (const std::string t : {"vmiOptProcessScanData=2", "vmiOptProcessScanData", "vmiOptProcessScanData=",
                                "Other=1", "=1", "vmiOptProcessScanData=01", ""})
        EXPECT_EQ(CommandInputs::plugin_option_error(t), t + expected) << t;
}

TEST(CommandInputs, PluginOptions_KeepsTheOrderGivenSoALaterOneOverrides)
{
    const std::vector<std::pair<std::string, int>> expected = {
        {"vmiOptProcessImageData", 0}, {"vmiOptProcessScanData", 1}, {"vmiOptProcessImageData", 1}};
    EXPECT_EQ(CommandInputs::plugin_options(
                  {"vmiOptProcessImageData=0", "vmiOptProcessScanData=1", "vmiOptProcessImageData=1"}),
              expected);
}

TEST(CommandInputs, ScaleError_NoneForFiniteNumbersAboveZero)
{
    for (const char* s : {"1", "0.001", "1e-3", "4.9e-324", "1.7976931348623157e308"})
        EXPECT_EQ(CommandInputs::scale_error(s), "") << s;
}

TEST(CommandInputs, ScaleError_ZeroNegativeNonFiniteAndNonNumbersAreRefused)
{
    for (const std::string s : {"0", "-0", "-1", "-4.9e-324", "nan", "inf", "1e309", "abc", "1x", ""})
        EXPECT_EQ(CommandInputs::scale_error(s), s + ": expected a finite number above 0") << s;
}

TEST(CommandInputs, UnreadableFile_SaysWhyForEachKindOfPath)
{
    EXPECT_EQ(CommandInputs::unreadable_file("/nonexistent/dir/a.vlm"), "no such file");
    EXPECT_EQ(CommandInputs::unreadable_file("/tmp"), "is a directory");
    EXPECT_EQ(CommandInputs::unreadable_file("/dev/null"), "not a regular file");
    EXPECT_EQ(CommandInputs::unreadable_file(std::string(VELMORA_SOURCE_DIR) + "/cli/CommandInputs.cpp"), "");
}

TEST(CommandInputs, Report_IsOneLineNamingTheCommandTheSubjectAndTheReason)
{
    std::ostringstream err;
    CommandInputs::report(err, "dump", "a.vlm", "no such file");
    EXPECT_EQ(err.str(), "velmora dump: a.vlm: no such file\n");
}
