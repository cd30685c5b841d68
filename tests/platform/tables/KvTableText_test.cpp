#include "KvTableText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvCodePage.h"
#include "KvException.h"

namespace kv {

namespace {

/// Another code page of the process for one test.
class TAnsiPage
{
public:
    explicit TAnsiPage(std::string_view Name) { SetAnsiCodePage(Name); }
    TAnsiPage(const TAnsiPage&) = delete;
    TAnsiPage& operator=(const TAnsiPage&) = delete;
    ~TAnsiPage() { SetAnsiCodePage("UTF-8"); }
};

std::string Converted(std::string_view CodePage, std::string_view Stored)
{
    TKvTableText Text(CodePage);
    return std::string(Text.Convert(Stored));
}

} // namespace

TEST(KvTableText, TextOfThePageOfTheFileBecomesUtf8)
{
    EXPECT_EQ(Converted("437", "Z\x81rich"), "Zürich");
    EXPECT_EQ(Converted("850", "\x9D\xE0"), "ØÓ");
    EXPECT_EQ(Converted("1252", "\x80 5"), "€ 5");
    EXPECT_EQ(Converted("866", "\x8C\xA8\xE0"), "Мир");
}

TEST(KvTableText, CharactersOfSeveralBytesAreReadWhole)
{
    EXPECT_EQ(Converted("932", "\x93\xFA\x96{"), "日本");
}

TEST(KvTableText, TextThatIsNoneOfAWidePageIsAnError)
{
    TKvTableText Text("932");
    EXPECT_THROW(Text.Convert("\x93"), EConvertError);
}

TEST(KvTableText, BytesThatAPageLeavesUndefinedAreKeptAsStandIns)
{
    EXPECT_EQ(Converted("1252", "a\x81z"), "a\xC2\x81z");
    EXPECT_EQ(Converted("874", "\xDB"), "\xEF\x9F\x9B");
    EXPECT_EQ(Converted("1255", "\xD9"), "\xEF\x9F\x99");
}

TEST(KvTableText, TextStaysAsItIsWhenNoPageIsNamed)
{
    EXPECT_EQ(Converted("", "Z\x81rich"), "Z\x81rich");
    TKvTableText Text;
    EXPECT_EQ(Text.Convert("Z\x81rich"), "Z\x81rich");
}

TEST(KvTableText, TextOfAPageThatNobodyKnowsIsAnErrorWhereItIsNotAscii)
{
    EXPECT_EQ(Converted("999", "Zurich"), "Zurich");
    try {
        Converted("999", "Z\x81rich");
        ADD_FAILURE() << "no error";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, "Unknown code page '999'");
    }
}

TEST(KvTableText, TellsWhenSomebodyHasToGuess)
{
    TKvTableText Text("");
    Text.Convert("Zurich");
    Text.Convert("Zürich");
    EXPECT_FALSE(Text.HasGuessed()) << "text of the process";
    Text.Convert("Z\x81rich");
    Text.Convert("Zurich");
    EXPECT_TRUE(Text.HasGuessed());
    TKvTableText AsItIs, Named("437");
    AsItIs.Convert("Z\x81rich");
    Named.Convert("Z\x81rich");
    EXPECT_FALSE(AsItIs.HasGuessed()) << "asked for";
    EXPECT_FALSE(Named.HasGuessed());
    EXPECT_EQ(Named.Unconverted("Z\x81rich"), TVariant("Z\x81rich"));
    EXPECT_TRUE(Named.HasGuessed());
    const TAnsiPage Page("windows-1252");
    TKvTableText Windows("");
    Windows.Convert("Z\xFCrich");
    EXPECT_FALSE(Windows.HasGuessed()) << "the process's page was settled";
}

TEST(KvTableText, TellsWhetherACharacterIsAByte)
{
    EXPECT_TRUE(TKvTableText("437").IsSingleByte());
    EXPECT_TRUE(TKvTableText("").IsSingleByte());
    EXPECT_FALSE(TKvTableText("932").IsSingleByte());
    EXPECT_FALSE(TKvTableText("UTF-8").IsSingleByte());
}

TEST(KvTableText, AsciiIsNeverCopied)
{
    const std::string_view Stored = "plain text";
    TKvTableText Text("437");
    EXPECT_EQ(Text.Convert(Stored).data(), Stored.data());
    EXPECT_EQ(Text.Value(Stored).Text().data(), Stored.data());
}

TEST(KvTableText, ConvertedValuesOwnTheirText)
{
    TKvTableText Text("437");
    const auto First = Text.Value("Z\x81rich");
    const auto Second = Text.Value("K\x94ln");
    EXPECT_EQ(First, TVariant("Zürich"));
    EXPECT_EQ(Second, TVariant("Köln"));
}

TEST(KvTableText, TheProcessMayHaveAnotherPage)
{
    const TAnsiPage Page("windows-1252");
    EXPECT_EQ(Converted("437", "Z\x81rich"), "Z\xFCrich");
}

TEST(KvTableText, ACharacterThatTheProcessCannotShowIsAnError)
{
    const TAnsiPage Page("windows-1252");
    TKvTableText Text("866");
    EXPECT_THROW(Text.Convert("\x8C"), EConvertError);
}

} // namespace kv
