#include "KvxlsFormats.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace kv {

namespace {

/// The formats from `First` to `Last` that are dates.
std::vector<int> DatesAmong(const TKvxlsFormats& Formats, int First, int Last)
{
    std::vector<int> Result;
    for (int Format = First; Format <= Last; ++Format)
        if (Formats.IsDateFormat(static_cast<std::uint16_t>(Format)))
            Result.push_back(Format);
    return Result;
}

} // namespace

TEST(KvxlsFormats, TextsOfTheBuiltInFormats)
{
    const std::vector<std::string> Expected = {
        "", "0", "0.00", "#,##0", "#,##0.00", "_($#,##0_);($#,##0)", "_($#,##0_);[Red]($#,##0)",
        "_($#,##0.00_);($#,##0.00)", "_($#,##0.00_);[Red]($#,##0.00)", "0%", "0.00%", "0.00E+00", "# ?/?",
        "# ?" "?/?" "?", "m/d/yy", "d-mmm-y", "d-mmm", "mmmm-yy", "h:mm AM/PM", "h:mm:ss AM/PM",
        "h:mm", "h:mm:SS", "m/d/yy h:mm", "", "", "", "", "", "", "", "", "", "", "", "", "", "",
        "(#,##0_);(#,##0)",
        "(#,##0_);[Red](#,##0)", "(#,##0.00_);(#,##0.00)", "(#,##0.00_);[Red](#,##0.00)",
        "_(* #,##0_);_(* (#,##0);_(* \"-\"_);_(@_)", "_($* #,##0_);_($* (#,##0);_($* \"-\"_);_(@_)",
        "_(* #,##0.00_);_(* (#,##0.00);_(* \"-\"?" "?_);_(@_)",
        "_($* #,##0.00_);_($* (#,##0.00);_($* \"-\"?" "?_);_(@_)",
        "mm:ss", "[h]:mm:ss", "mm:ss.0", "# #0.0E+0", "@"};
    ASSERT_EQ(Expected.size(), BuiltInFormats.size());
    for (std::size_t I = 0; I < Expected.size(); ++I)
        EXPECT_EQ(BuiltInFormats[I], Expected[I]) << I;
}

TEST(KvxlsFormats, TheBuiltInFormats14To22AreDates)
{
    const std::vector<int> Expected = {14, 15, 16, 17, 18, 19, 20, 21, 22};
    EXPECT_EQ(DatesAmong(TKvxlsFormats(), 0, 0xFFFF), Expected);
}

TEST(KvxlsFormats, AnXfNamesItsFormat)
{
    TKvxlsFormats Formats;
    EXPECT_FALSE(Formats.HasXfs());
    for (const auto Format : std::initializer_list<std::uint16_t>{0, 14, 13, 22, 23})
        Formats.AddXf(Format);
    EXPECT_TRUE(Formats.HasXfs());
    EXPECT_FALSE(Formats.IsDate(0));
    EXPECT_TRUE(Formats.IsDate(1));
    EXPECT_FALSE(Formats.IsDate(2));
    EXPECT_TRUE(Formats.IsDate(3));
    EXPECT_FALSE(Formats.IsDate(4));
}

TEST(KvxlsFormats, AnXfThatIsNotThereCountsAsAFormat)
{
    TKvxlsFormats Formats;
    Formats.AddXf(0);
    EXPECT_FALSE(Formats.IsDate(13));
    EXPECT_TRUE(Formats.IsDate(14));
    EXPECT_TRUE(Formats.IsDate(22));
    EXPECT_FALSE(Formats.IsDate(23));
    Formats.AddXf(14);
    Formats.ClearXfs();
    EXPECT_FALSE(Formats.IsDate(1));
}

TEST(KvxlsFormats, UserDefinedFormatsAreNeverDates)
{
    TKvxlsFormats Formats;
    Formats.SetPattern(164, "yyyy-mm-dd");
    Formats.AddXf(164);
    EXPECT_FALSE(Formats.IsDate(0));
    Formats.SetPattern(14, "0.00");
    EXPECT_TRUE(Formats.IsDateFormat(14));
}

TEST(KvxlsFormats, PatternsDecideUnderTheExtension)
{
    TKvxlsFormats Formats(true);
    Formats.SetPattern(164, "yyyy-mm-dd");
    Formats.SetPattern(165, "0.00");
    Formats.AddXf(164);
    Formats.AddXf(165);
    EXPECT_TRUE(Formats.IsDate(0));
    EXPECT_FALSE(Formats.IsDate(1));
    Formats.SetPattern(14, "0.00");                 // a workbook may define it anew
    EXPECT_FALSE(Formats.IsDateFormat(14));
}

TEST(KvxlsFormats, BuiltInDatesOfEveryLanguageCountUnderTheExtension)
{
    const std::vector<int> Expected = {14, 15, 16, 17, 18, 19, 20, 21, 22, 27, 28, 29, 30, 31, 32, 33, 34, 35,
                                       36, 45, 46, 47, 50, 51, 52, 53, 54, 55, 56, 57, 58};
    EXPECT_EQ(DatesAmong(TKvxlsFormats(true), 0, 0xFFFF), Expected);
}

TEST(KvxlsFormats, UnnumberedPatternsCountFromZero)
{
    TKvxlsFormats Formats(true);
    for (const auto* const Pattern : {"General", "d.m.yy", "0"})
        Formats.AddPattern(Pattern);
    EXPECT_EQ(DatesAmong(Formats, 0, 3), std::vector<int>{1});
}

TEST(KvxlsFormats, DatePatterns)
{
    for (const auto* const Pattern :
         {"d", "m/d/yy", "YYYY", "h:mm", "mm:ss.0", "[h]:mm", "[mm]", "[SS]", "\"am\" d", "0;d", "[Red]d",
          "[$-409]d\\ mmmm", "[$-F800]dddd\\,\\ mmmm\\ dd", "yyyy\"year\"", "m/d/yy;@", "_(d_)", "*-d"})
        EXPECT_TRUE(IsDatePattern(Pattern)) << Pattern;
}

TEST(KvxlsFormats, PatternsThatAreNoDates)
{
    for (const auto* const Pattern :
         {"", "General", "GENERAL", "Standard", "0.00", "0.00E+00", "@", "# ?/?", "\"day\"", "\"open d",
          "\\d0", "0_d", "*d0", "[Red]0", "[$-409]0", "[$DM-407]0", "[<100]0", "[]0", "[d", "0\\", "_",
          "#,##0\\ _D_M", "General\" days\"", "0\"%\""})
        EXPECT_FALSE(IsDatePattern(Pattern)) << Pattern;
}

TEST(KvxlsFormats, PatternsTellDaysFromTimesAndDurations)
{
    for (const auto* const Pattern :
         {"d", "m", "mm/yy", "mmm", "mmmm", "m/d/yy h:mm", "[h]:mm d", "h:mm mmm"})
        EXPECT_EQ(KindOfPattern(Pattern), skMoment) << Pattern;
    for (const auto* const Pattern : {"h", "s.0", "h:mm", "mm:ss", "h:mm AM/PM", "hh:mm:ss A/P", "h;@"})
        EXPECT_EQ(KindOfPattern(Pattern), skTime) << Pattern;
    for (const auto* const Pattern : {"[h]", "[h]:mm", "[mm]:ss", "[ss]", "[Red][hh]:mm"})
        EXPECT_EQ(KindOfPattern(Pattern), skDuration) << Pattern;
    EXPECT_EQ(KindOfPattern("0.00"), skNumber);
}

TEST(KvxlsFormats, YearsOfErasAndDaysOfTheWeekAreDates)
{
    for (const auto* const Pattern :
         {"e", "ge", "ggge\"x\"", "[$-411]gge", "G.E", "b", "bbbb", "aaa", "[$-411]aaaa", "ge-"})
        EXPECT_EQ(KindOfPattern(Pattern), skMoment) << Pattern;
    for (const auto* const Pattern : {"0.00E+00", "#e-0", "0E0", "Geral", "A/P", "aa", "Generelt"})
        EXPECT_EQ(KindOfPattern(Pattern), skNumber) << Pattern;
}

TEST(KvxlsFormats, TheFirstUnnumberedFormatIsNoDateWhateverItsWord)
{
    for (const auto* const Word : {"Norm\xE1l", "Standaard", "Est\xE1ndar", "V\xB9" "eobecn\xFD", "d.m.yy"}) {
        TKvxlsFormats Formats(true);
        Formats.AddPattern(Word);
        Formats.AddPattern("d");
        EXPECT_EQ(DatesAmong(Formats, 0, 3), std::vector<int>{1}) << Word;
    }
}

TEST(KvxlsFormats, BuiltInKinds)
{
    for (const bool Patterns : {false, true}) {
        const TKvxlsFormats Formats(Patterns);
        for (const auto Format : std::initializer_list<std::uint16_t>{14, 15, 16, 17, 22})
            EXPECT_EQ(Formats.KindOfFormat(Format), skMoment) << Format;
        for (const auto Format : std::initializer_list<std::uint16_t>{18, 19, 20, 21})
            EXPECT_EQ(Formats.KindOfFormat(Format), skTime) << Format;
    }
    const TKvxlsFormats Formats(true);
    for (const auto Format : std::initializer_list<std::uint16_t>{45, 47, 32, 33})
        EXPECT_EQ(Formats.KindOfFormat(Format), skTime) << Format;
    EXPECT_EQ(Formats.KindOfFormat(46), skDuration);
    EXPECT_EQ(Formats.KindOfFormat(31), skMoment);
    EXPECT_EQ(Formats.KindOfFormat(34), skMoment);
}

} // namespace kv
