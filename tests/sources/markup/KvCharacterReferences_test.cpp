#include "KvCharacterReferences.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvCodePage.h"

namespace kv {

namespace {

/// What a reference reads as, and what is left behind it after "|"; the text itself when it is none.
std::string Read(std::string_view Text, TKvReferences Kind)
{
    std::string Out;
    const auto Size = DecodeReference(Text, Kind, Out);
    return Out + "|" + std::string(Text.substr(Size));
}

struct TReading
{
    const char* Name;
    std::string_view Text;
    std::string_view Html, Xml;
};
void PrintTo(const TReading& Reading, std::ostream* Out) { *Out << Reading.Text; }
std::string NameOfRow(const testing::TestParamInfo<TReading>& Info) { return Info.param.Name; }

} // namespace

class KvCharacterReferences : public testing::TestWithParam<TReading> {};

TEST_P(KvCharacterReferences, ReadAs)
{
    EXPECT_EQ(Read(GetParam().Text, crHtml), GetParam().Html);
    EXPECT_EQ(Read(GetParam().Text, crXml), GetParam().Xml);
}

INSTANTIATE_TEST_SUITE_P(
    , KvCharacterReferences,
    testing::Values(TReading{"Ampersand", "&amp;b", "&|b", "&|b"}, TReading{"Less", "&lt;", "<|", "<|"},
                    TReading{"Greater", "&gt;", ">|", ">|"}, TReading{"Quote", "&quot;", "\"|", "\"|"},
                    TReading{"Apostrophe", "&apos;", "'|", "'|"},
                    TReading{"LatinLetter", "&auml;x", "\u00E4|x", "|&auml;x"},
                    TReading{"FirstOfTheTable", "&AElig;", "\u00C6|", "|&AElig;"},
                    TReading{"LastOfTheTable", "&zwnj;", "\u200C|", "|&zwnj;"},
                    TReading{"GreekLetter", "&thetasym;", "\u03D1|", "|&thetasym;"},
                    TReading{"CaseMatters", "&AMP;&Eacute;", "&|&Eacute;", "|&AMP;&Eacute;"},
                    TReading{"TwoCharacters", "&bne;", "=\u20E5|", "|&bne;"},
                    TReading{"LongestName", "&CounterClockwiseContourIntegral;", "\u2233|",
                             "|&CounterClockwiseContourIntegral;"},
                    TReading{"NoBreakSpace", "&nbsp;", "\u00A0|", "|&nbsp;"},
                    TReading{"Decimal", "&#8364;x", "\u20AC|x", "\u20AC|x"},
                    TReading{"Hexadecimal", "&#x20AC;", "\u20AC|", "\u20AC|"},
                    TReading{"UpperCaseX", "&#X20ac;", "\u20AC|", "|&#X20ac;"},
                    TReading{"BeyondSixteenBits", "&#x1F600;", "\U0001F600|", "\U0001F600|"},
                    TReading{"TwoBytes", "&#955;", "\u03BB|", "\u03BB|"},
                    TReading{"CarriageReturn", "&#13;", "\r|", "\r|"},
                    TReading{"LeadingZeros", "&#0013;", "\r|", "\r|"},
                    TReading{"Windows1252Number", "&#128;&#150;", "\u20AC|&#150;", "\u0080|&#150;"},
                    TReading{"Windows1252Hole", "&#129;", "\u0081|", "\u0081|"},
                    TReading{"NoSemicolonAfterAnOldName", "&eacute b", "\u00E9| b", "|&eacute b"},
                    TReading{"NoSemicolonAfterAmp", "&amp b", "&| b", "|&amp b"},
                    TReading{"NoSemicolonAfterANewerName", "&alpha b", "|&alpha b", "|&alpha b"},
                    TReading{"NoSemicolonAfterANumber", "&#65 b", "A| b", "|&#65 b"},
                    TReading{"NoSemicolonAtTheEnd", "&lt", "<|", "|&lt"},
                    TReading{"UnknownName", "&unknown;", "|&unknown;", "|&unknown;"},
                    TReading{"NameWithMoreBehind", "&notit;", "\u00AC|it;", "|&notit;"},
                    TReading{"YearBehindAName", "&copy2020", "\u00A9|2020", "|&copy2020"},
                    TReading{"LongerNameOfThese", "&notin;", "\u2209|", "|&notin;"},
                    TReading{"AloneInText", "& b", "|& b", "|& b"},
                    TReading{"Zero", "&#0;", "\uFFFD|", "|&#0;"},
                    TReading{"Surrogate", "&#xD800;", "\uFFFD|", "|&#xD800;"},
                    TReading{"PastTheLastCharacter", "&#x110000;", "\uFFFD|", "|&#x110000;"},
                    TReading{"FarPastTheLast", "&#99999999999;", "\uFFFD|", "|&#99999999999;"},
                    TReading{"LastCharacter", "&#x10FFFF;", "\U0010FFFF|", "\U0010FFFF|"},
                    TReading{"NoDigits", "&#;", "|&#;", "|&#;"},
                    TReading{"NoHexDigits", "&#x;", "|&#x;", "|&#x;"}, TReading{"Nothing", "", "|", "|"}),
    NameOfRow);

TEST(KvCharacterReferencesInACodePage, TurnIntoItsBytesOrStayAsTheyAre)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(Read("&euro;", crHtml), "\x80|");
    EXPECT_EQ(Read("&#955;", crHtml), "|&#955;");
    SetAnsiCodePage("UTF-8");
}

} // namespace kv
