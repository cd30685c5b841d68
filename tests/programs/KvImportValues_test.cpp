#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace kv {

namespace {

using testing::HasSubstr;
using namespace std::string_literals;

/// A value that is imported into one column, and what then stands there as SQLite quotes it.
struct TValueRow
{
    const char* Name;
    const char* Column;
    std::string Value;
    const char* Stored;
    TArguments Arguments = {};
};

void PrintTo(const TValueRow& Row, std::ostream* Out) { *Out << Row.Name; }

class KvImportStores : public testing::TestWithParam<TValueRow> {};

TEST_P(KvImportStores, TheValue)
{
    const auto& Row = GetParam();
    const TShop Shop("CREATE TABLE orders (ID INTEGER PRIMARY KEY, V " + std::string(Row.Column) + ")");
    const auto Run = Shop.Import("ID,V\n1," + Row.Value + "\n", Row.Arguments);
    EXPECT_EQ(Run["exitStatus"], 0) << Run;
    EXPECT_EQ(Shop.Ask("SELECT quote(V) FROM orders"), Row.Stored);
}

const TArguments German{"--date-order", "dmy", "--date-separator", ".", "--decimal-separator", ","};
const TArguments American{"--date-order", "mdy", "--date-separator", "/"};

INSTANTIATE_TEST_SUITE_P(, KvImportStores, testing::Values(
    TValueRow{"Text", "TEXT", "Rom", "'Rom'"},
    TValueRow{"Empty", "TEXT", "", "NULL"},
    TValueRow{"BlanksOnly", "TEXT", "   ", "NULL"},
    TValueRow{"DoubledQualifier", "TEXT", R"("He said ""hi""")", R"('He said "hi"')"},
    TValueRow{"DoubledQualifierClassic", "TEXT", R"("He said ""hi""")", R"('He said ""hi""')", {"--classic"}},
    TValueRow{"LineEndInside", "TEXT", "\"a\nb\"", "'a\nb'"},
    TValueRow{"Utf8", "TEXT", "Łódź 東京", "'Łódź 東京'"},
    TValueRow{"NotUtf8", "TEXT", "K\xF6ln", "'Köln'"},
    TValueRow{"NotUtf8OfAnotherPage", "TEXT", "\xA3\xF3" "d\x9F", "'Łódź'",
              {"--legacy-code-page", "windows-1250"}},
    TValueRow{"AnsiCodePage", "TEXT", "\xCC\xEE\xF1\xEA\xE2\xE0", "'Москва'",
              {"--code-page", "windows-1251"}},
    TValueRow{"MsDos", "TEXT", "K\x94ln \xC4\xB3", "'Köln ─│'", {"--charset", "msdos"}},
    TValueRow{"MsDosOfAnotherPage", "TEXT", "\xA3\x94", "'Żö'",
              {"--charset", "msdos", "--oem-code-page", "CP775"}},
    TValueRow{"Date", "DATE", "2024-02-29", "'2024-02-29'"},
    TValueRow{"GermanDate", "DATE", "29.02.2024", "'2024-02-29'", German},
    TValueRow{"AmericanDate", "DATE", "2/29/2024", "'2024-02-29'", American},
    TValueRow{"TwoDigitYear", "DATE", "29.02.96", "'1996-02-29'", German},
    TValueRow{"Timestamp", "TIMESTAMP", "2024-02-29 23:59:58", "'2024-02-29 23:59:58'"},
    TValueRow{"Time", "TIME", "7:05", "'07:05:00'"},
    TValueRow{"TimeOfAnotherSeparator", "TIME", "7.05.09", "'07:05:09'", {"--time-separator", "."}},
    TValueRow{"Amount", "DECIMAL(10,2)", "1234.5", "1234.5"},
    TValueRow{"AmountWithThousands", "DECIMAL(10,2)", "\"1,234,567.5\"", "1234567.5"},
    TValueRow{"GermanAmount", "DECIMAL(10,2)", "\"1.234,50\"", "1234.5", German},
    TValueRow{"NegativeAmount", "DECIMAL(10,2)", "-0.05", "-0.05"},
    TValueRow{"LargestInteger", "INTEGER", "9223372036854775807", "9223372036854775807"},
    TValueRow{"True", "BOOLEAN", "True", "1"},
    TValueRow{"OtherTrue", "BOOLEAN", "ja", "1", {"--boolean-true", "ja", "--boolean-false", "nein"}},
    TValueRow{"OtherFalse", "BOOLEAN", "nein", "0", {"--boolean-true", "ja", "--boolean-false", "nein"}}),
    [](const auto& Info) { return Info.param.Name; });

/// A value that cannot be stored, and why.
struct TRefusedValueRow
{
    const char* Name;
    const char* Column;
    std::string Value;
    const char* Message;
    TArguments Arguments = {};
};

void PrintTo(const TRefusedValueRow& Row, std::ostream* Out) { *Out << Row.Name; }

class KvImportRefuses : public testing::TestWithParam<TRefusedValueRow> {};

TEST_P(KvImportRefuses, TheRecord)
{
    const auto& Row = GetParam();
    const TShop Shop("CREATE TABLE orders (ID INTEGER PRIMARY KEY, V " + std::string(Row.Column) + ")");
    const auto Run = Shop.Import("ID,V\n1," + Row.Value + "\n2,\n", Row.Arguments);
    EXPECT_EQ(Run["exitStatus"], 1);
    EXPECT_EQ(Run["failed"], 1);
    EXPECT_EQ(Run["added"], 1);
    ASSERT_EQ(Run["errors"].size(), 1);
    EXPECT_EQ(Run["errors"][0]["place"], "line 2");
    EXPECT_EQ(Run["errors"][0]["message"], std::string(Row.Message));
    EXPECT_EQ(Shop.Ask("SELECT ID FROM orders"), "2");
}

INSTANTIATE_TEST_SUITE_P(, KvImportRefuses, testing::Values(
    TRefusedValueRow{"NoInteger", "INTEGER", "1.5", "'1.5' is not a valid integer value for field 'V'"},
    TRefusedValueRow{"TooLargeForSmallint", "SMALLINT", "40000",
                     "'40000' is not between -32768 and 32767 for field 'V'"},
    TRefusedValueRow{"TooLargeForInteger", "INTEGER", "9223372036854775808",
                     "'9223372036854775808' is not a valid integer value for field 'V'"},
    TRefusedValueRow{"NoNumber", "DECIMAL(10,2)", "12 EUR",
                     "'12 EUR' is not a valid floating point value for field 'V'"},
    TRefusedValueRow{"NoSuchDay", "DATE", "2023-02-29",
                     "'2023-02-29' is not a valid date value for field 'V'"},
    TRefusedValueRow{"DateOfAnotherOrder", "DATE", "29-02-2024",
                     "'29-02-2024' is not a valid date value for field 'V'"},
    TRefusedValueRow{"NoSuchTime", "TIME", "24:61", "'24:61' is not a valid time value for field 'V'"},
    TRefusedValueRow{"NeitherTrueNorFalse", "BOOLEAN", "maybe",
                     "'maybe' is not a valid boolean value for field 'V'"},
    TRefusedValueRow{"TooLong", "VARCHAR(3)", "Bern",
                     "'Bern' is longer than field 'V': 4 characters, it holds 3"}),
    [](const auto& Info) { return Info.param.Name; });

TEST(KvImportValues, AreCountedAgainstTheHeaderWhereverItStands)
{
    const TShop Shop;
    const auto Run = Shop.Import("Orders of May\nID,CITY\n1,Rom\n2,Bern,x\n", {"--first-row", "3"});
    EXPECT_EQ(Run["warnings"], nlohmann::json::array({"line 4 has more values than line 2: "
                                                      "the extra ones were not imported"}));
}

TEST(KvImportValues, AreCountedAgainstTheFirstLineWithoutAHeader)
{
    const TShop Shop;
    const auto Run = Shop.Import("1,Rom\n2,Bern,x\n3\n", {"--by-position"});
    EXPECT_EQ(Run["warnings"], nlohmann::json::array({
        "line 2 has more values than line 1: the extra ones were imported only where a mapping names them",
        "line 3 has fewer values than line 1: the missing ones count as empty"}));
}

TEST(KvImportValues, AnEmptyFileHasNoHeader)
{
    const TShop Shop;
    const auto Run = Shop.Run("");
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("has no header line to find the columns by name"));
}

TEST(KvImportValues, AHeaderAloneImportsNothing)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY\n");
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["read"], 0);
    EXPECT_EQ(Shop.Count(), 0);
}

TEST(KvImportValues, AByteOrderMarkIsNoPartOfTheHeader)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("\xEF\xBB\xBFID,CITY\n1,Rom\n")["added"], 1);
}

TEST(KvImportValues, Utf16IsReadWhenItSaysSo)
{
    const TShop Shop;
    std::string Text = "\xFF\xFE"s;
    for (const char Char : "ID,CITY\r\n1,R\xF6m\r\n"s)
        (Text += Char) += '\0';
    EXPECT_EQ(Shop.Import(Text)["added"], 1);
    EXPECT_EQ(Shop.Ask("SELECT CITY FROM orders"), "Röm");
}

TEST(KvImportValues, ZeroBytesAreText)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("ID,CITY\n1,a\0b\n"s)["added"], 1);
    EXPECT_EQ(Shop.Ask("SELECT hex(CITY) FROM orders"), "610062");
}

TEST(KvImportValues, AValueThatNoQualifierClosesIsAnError)
{
    const TShop Shop;
    const auto Run = Shop.Run("ID,CITY\n1,Rom\n2,\"Oslo\n3,Bern\n");
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("orders.csv"));
    EXPECT_THAT(Run.Err, HasSubstr("ine 3"));
    EXPECT_THAT(Run.Err, HasSubstr("begins a value that no text qualifier closes"));
    EXPECT_EQ(Shop.Count(), 0);
}

TEST(KvImportValues, MoreAndFewerThanTheHeaderHasAreTold)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY,QTY\n1,Rom,5,x,y\n2,Oslo\n3,Bern,7\n4,Bonn,8,z\n");
    EXPECT_EQ(Run["added"], 4);
    EXPECT_EQ(Run["warnings"], nlohmann::json::array({
        "2 lines, the first of them line 2, have more values than line 1: the extra ones were not imported",
        "line 3 has fewer values than line 1: the missing ones count as empty"}));
}

TEST(KvImportValues, LinesOfAnyLengthAreRead)
{
    const TShop Shop;
    const std::string Long(200000, 'x');
    EXPECT_EQ(Shop.Import("ID,CITY,NOTE\n1,Rom," + Long + "\n")["added"], 1);
    EXPECT_EQ(Shop.Ask("SELECT length(NOTE) FROM orders"), "200000");
}

TEST(KvImportValues, CommasThatAreNoThousandSeparatorsAreRefused)
{
    const TShop Shop;
    const auto Run = Shop.Run("ID;CITY;AMOUNT\n1;Rom;12\n2;Bern;1,5\n");
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err,
                HasSubstr("line 3: '1,5' has a comma where no thousands end; say --decimal-separator comma"));
    EXPECT_EQ(Shop.Import("ID;CITY;AMOUNT\n2;Bern;1,5\n", {"--decimal-separator", "comma"})["added"], 1);
    EXPECT_EQ(Shop.Ask("SELECT AMOUNT FROM orders"), "1.5");
}

TEST(KvImportValues, RowsOutsideTheBoundsStayOut)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("ID,CITY\n1,a\n2,b\n3,c\n4,d\n", {"--last-row", "4"})["read"], 3);
    EXPECT_EQ(Shop.Ask("SELECT group_concat(ID) FROM orders"), "1,2,3");
}

} // namespace

} // namespace kv
