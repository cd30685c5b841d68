#include "KvFieldConvert.h"

#include <limits>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvMemoryDataSet.h"

namespace kv {

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t Int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Int64Min = std::numeric_limits<std::int64_t>::min();

TVariant Date(double Days) { return TDateTime{Days}; }
TVariant Money(std::int64_t Scaled) { return TCurrency{Scaled}; }

std::string Described(const TVariant& Value)
{
    static constexpr const char* Kinds[] = {"empty",     "null",    "integer", "double", "currency",
                                            "date-time", "boolean", "string",  "array"};
    if (Value.Kind() == vkDateTime)
        return "date-time " + std::to_string(Value.DateTime().Days);
    return std::string(Kinds[Value.Kind()]) + " " + (Value.IsArray() ? "" : Value.ToText());
}

/// The process's settings without a locale, whatever the environment says.
struct KvFieldConvert : testing::Test
{
    KvFieldConvert() { FormatSettings() = {}; }
    ~KvFieldConvert() override { FormatSettings() = Saved; }

    const TFormatSettings Saved = FormatSettings();
};

// --- What is accepted -------------------------------------------------------------------------------

struct TAccepted
{
    int Line;
    TFieldType Type;
    TVariant Given;
    TVariant Stored;
};

const TAccepted Accepted[] = {
    {__LINE__, ftSmallint, "-32768", -32768},
    {__LINE__, ftSmallint, 32767, 32767},
    {__LINE__, ftInteger, " 42 ", 42},
    {__LINE__, ftInteger, "+7", 7},
    {__LINE__, ftInteger, 3.0, 3},
    {__LINE__, ftInteger, -0.0, 0},
    {__LINE__, ftInteger, Money(20000), 2},
    {__LINE__, ftInteger, true, 1},
    {__LINE__, ftInteger, "-2147483648", -2147483648LL},
    {__LINE__, ftWord, "65535", 65535},
    {__LINE__, ftWord, 0, 0},
    {__LINE__, ftAutoInc, "12", 12},
    {__LINE__, ftLargeint, "9223372036854775807", Int64Max},
    {__LINE__, ftLargeint, "-9223372036854775808", Int64Min},
    {__LINE__, ftLargeint, -9223372036854775808.0, Int64Min},

    {__LINE__, ftBoolean, "true", true},
    {__LINE__, ftBoolean, " F ", false},
    {__LINE__, ftBoolean, "t", true},
    {__LINE__, ftBoolean, "FALSE", false},
    {__LINE__, ftBoolean, "1", true},
    {__LINE__, ftBoolean, 0, false},
    {__LINE__, ftBoolean, 1.0, true},
    {__LINE__, ftBoolean, false, false},

    {__LINE__, ftFloat, "-1.5e3", -1500.0},
    {__LINE__, ftFloat, 7, 7.0},
    {__LINE__, ftFloat, Money(12345), 1.2345},
    {__LINE__, ftFloat, Date(1.5), 1.5},
    {__LINE__, ftFloat, true, 1.0},
    {__LINE__, ftCurrency, "1.5", Money(15000)},
    {__LINE__, ftCurrency, "922337203685477.5807", Money(Int64Max)},
    {__LINE__, ftCurrency, "0.00001", 0.00001},
    {__LINE__, ftCurrency, "2.000000", Money(20000)},
    {__LINE__, ftCurrency, 7, Money(70000)},
    {__LINE__, ftCurrency, "9007199254740992", 9007199254740992.0},
    {__LINE__, ftCurrency, Money(12345), Money(12345)},
    {__LINE__, ftBCD, "9007199254740993", std::int64_t{9007199254740993}},
    {__LINE__, ftBCD, "922337203685477.5807", Money(Int64Max)},
    {__LINE__, ftBCD, "0.00001", 0.00001},
    {__LINE__, ftBCD, "123456789012345678.91", "123456789012345678.91"},
    {__LINE__, ftBCD, "2.0000000000000000", 2},
    {__LINE__, ftBCD, Int64Max, Int64Max},
    {__LINE__, ftBCD, 0.1, 0.1},
    {__LINE__, ftBCD, Money(1), Money(1)},
    {__LINE__, ftBCD, true, 1.0},

    {__LINE__, ftDate, "12/31/2002", Date(37621)},
    {__LINE__, ftDate, Date(37621), Date(37621)},
    {__LINE__, ftDate, 37621, Date(37621)},
    {__LINE__, ftDate, Date(37621 + 0.4 / 86400000), Date(37621)},
    {__LINE__, ftDate, Date(37621 - 0.4 / 86400000), Date(37621)},
    {__LINE__, ftDate, "12/30/1899", Date(0)},
    {__LINE__, ftDate, 37621.0, Date(37621)},
    {__LINE__, ftDate, -693593, Date(-693593)},
    {__LINE__, ftDate, 2958465, Date(2958465)},
    {__LINE__, ftTime, "18:00", Date(0.75)},
    {__LINE__, ftTime, 0.5, Date(0.5)},
    {__LINE__, ftDateTime, "12/31/2002 06:00", Date(37621.25)},
    {__LINE__, ftDateTime, "12/31/2002", Date(37621)},
    {__LINE__, ftDateTime, 2958465.75, Date(2958465.75)},

    {__LINE__, ftString, "abc", "abc"},
    {__LINE__, ftString, "", ""},
    {__LINE__, ftString, 42, "42"},
    {__LINE__, ftString, true, "True"},
    {__LINE__, ftString, 1.5, "1.5"},
    {__LINE__, ftString, Date(37621), "12/31/2002"},
    {__LINE__, ftString, "  kept  ", "  kept  "},
    {__LINE__, ftMemo, "abc", "abc"},
    {__LINE__, ftFmtMemo, 1, "1"},
    {__LINE__, ftFixedChar, "x", "x"},
    {__LINE__, ftGuid, "{}", "{}"},
    {__LINE__, ftBlob, std::string("\0\xFF", 2), std::string("\0\xFF", 2)},
    {__LINE__, ftBytes, "\x80", "\x80"},
    {__LINE__, ftVarBytes, "", ""},
    {__LINE__, ftGraphic, "GIF", "GIF"},
    {__LINE__, ftOle, "x", "x"},
    {__LINE__, ftVariant, 5, 5},
    {__LINE__, ftVariant, TVariant::Array(0, 1), TVariant::Array(0, 1)},
    {__LINE__, ftUnknown, Date(1), Date(1)},
};

TEST_F(KvFieldConvert, GivesEachTypeItsOwnKind)
{
    for (const auto& Row : Accepted) {
        SCOPED_TRACE("line " + std::to_string(Row.Line));
        TVariant Result;
        ASSERT_TRUE(ConvertFieldValue(Row.Type, Row.Given, Result));
        EXPECT_EQ(Described(Result), Described(Row.Stored));
    }
}

TEST_F(KvFieldConvert, NoValueIsNullInEveryType)
{
    for (int Type = ftUnknown; Type <= ftVariant; ++Type) {
        for (const auto& None : {TVariant(), TVariant(Null)}) {
            TVariant Result = "before";
            EXPECT_TRUE(ConvertFieldValue(static_cast<TFieldType>(Type), None, Result));
            EXPECT_TRUE(Result.IsNull());
        }
    }
}

TEST_F(KvFieldConvert, NumbersAndDatesFollowTheSettingsOfTheProcess)
{
    FormatSettings().DecimalSeparator = ',';
    FormatSettings().DateSeparator = '.';
    FormatSettings().ShortDateFormat = "dd.MM.yyyy";
    TVariant Result;
    EXPECT_TRUE(ConvertFieldValue(ftFloat, "1,5", Result));
    EXPECT_EQ(Result, 1.5);
    EXPECT_TRUE(ConvertFieldValue(ftDate, "31.12.2002", Result));
    EXPECT_EQ(Result, Date(37621));
    EXPECT_FALSE(ConvertFieldValue(ftFloat, "1.5", Result));
}

// --- What is refused, and how the message says it ---------------------------------------------------

struct TRefused
{
    int Line;
    TFieldDef Field;
    TVariant Given;
    const char* Message;
};

const TRefused Refused[] = {
    {__LINE__, {"QTY", ftInteger}, "abc", "'abc' is not a valid integer value for field 'QTY'"},
    {__LINE__, {"QTY", ftInteger}, "", "'' is not a valid integer value for field 'QTY'"},
    {__LINE__, {"QTY", ftInteger}, "1.0", "'1.0' is not a valid integer value for field 'QTY'"},
    {__LINE__, {"QTY", ftInteger}, 1.5, "'1.5' is not a valid integer value for field 'QTY'"},
    {__LINE__, {"QTY", ftInteger}, Money(15000), "'1.5' is not a valid integer value for field 'QTY'"},
    {__LINE__, {"QTY", ftInteger}, Date(1), "'12/31/1899' is not a valid integer value for field 'QTY'"},
    {__LINE__,
     {"QTY", ftInteger},
     TVariant::Array(0, 0),
     "an array is not a valid integer value for field 'QTY'"},
    {__LINE__,
     {"QTY", ftInteger},
     "2147483648",
     "'2147483648' is not between -2147483648 and 2147483647 for field 'QTY'"},
    {__LINE__, {"QTY", ftSmallint}, 32768, "'32768' is not between -32768 and 32767 for field 'QTY'"},
    {__LINE__, {"QTY", ftWord}, -1, "'-1' is not between 0 and 65535 for field 'QTY'"},
    {__LINE__,
     {"QTY", ftLargeint},
     "9223372036854775808",
     "'9223372036854775808' is not a valid integer value for field 'QTY'"},
    {__LINE__,
     {"QTY", ftLargeint},
     9223372036854775808.0,
     "'9.223372036854776E18' is not a valid integer value for field 'QTY'"},

    {__LINE__, {"PAID", ftBoolean}, "yes", "'yes' is not a valid boolean value for field 'PAID'"},
    {__LINE__, {"PAID", ftBoolean}, 2, "'2' is not a valid boolean value for field 'PAID'"},

    {__LINE__, {"NET", ftFloat}, "1,5", "'1,5' is not a valid floating point value for field 'NET'"},
    {__LINE__, {"NET", ftFloat}, "nan", "'nan' is not a valid floating point value for field 'NET'"},
    {__LINE__, {"NET", ftCurrency}, "", "'' is not a valid floating point value for field 'NET'"},
    {__LINE__,
     {"NET", ftCurrency},
     "12345678901234567",
     "'12345678901234567' is not a valid floating point value for field 'NET'"},
    {__LINE__, {"NET", ftBCD}, "1e", "'1e' is not a valid floating point value for field 'NET'"},

    {__LINE__, {"DUE", ftDate}, "31.12.2002", "'31.12.2002' is not a valid date value for field 'DUE'"},
    {__LINE__,
     {"DUE", ftDate},
     "12/31/2002 06:00",
     "'12/31/2002 06:00' is not a valid date value for field 'DUE'"},
    {__LINE__, {"DUE", ftDate}, "00:00", "'00:00' is not a valid date value for field 'DUE'"},
    {__LINE__, {"DUE", ftDate}, 2958466, "'2958466' is not a valid date value for field 'DUE'"},
    {__LINE__, {"DUE", ftDate}, true, "'True' is not a valid date value for field 'DUE'"},
    {__LINE__, {"AT", ftTime}, 1.5, "'1.5' is not a valid time value for field 'AT'"},
    {__LINE__, {"AT", ftTime}, Date(1 - 1e-12), "'12/31/1899' is not a valid time value for field 'AT'"},
    {__LINE__, {"AT", ftTime}, -0.5, "'-0.5' is not a valid time value for field 'AT'"},
    {__LINE__, {"AT", ftDateTime}, -693594, "'-693594' is not a valid date and time value for field 'AT'"},
    {__LINE__, {"AT", ftDateTime}, Infinity, "'INF' is not a valid date and time value for field 'AT'"},
    {__LINE__, {"AT", ftDateTime}, "soon", "'soon' is not a valid date and time value for field 'AT'"},

    {__LINE__,
     {"NAME", ftString},
     TVariant::Array(0, 1),
     "an array is not a valid text value for field 'NAME'"},
    {__LINE__, {"NAME", ftString, 3}, "four", "'four' is longer than field 'NAME': 4 characters, it holds 3"},
    {__LINE__,
     {"NAME", ftFixedChar, 3},
     1234,
     "'1234' is longer than field 'NAME': 4 characters, it holds 3"},
    {__LINE__, {"NAME", ftMemo, 3}, "four", "'four' is longer than field 'NAME': 4 characters, it holds 3"},
    {__LINE__,
     {"HASH", ftVarBytes, 2},
     "\xC3\xBC\x01",
     "'\xC3\xBC\x01' is longer than field 'HASH': 3 bytes, it holds 2"},
};

TEST_F(KvFieldConvert, RefusesWhatHasNoExactMeaningAndSaysSo)
{
    for (const auto& Row : Refused) {
        SCOPED_TRACE("line " + std::to_string(Row.Line));
        TMemoryDataSet Table;
        Table.SetFieldDefs({Row.Field});
        Table.Open();
        Table.Append();
        try {
            Table.Fields(0).SetValue(Row.Given);
            ADD_FAILURE() << "was accepted";
        }
        catch (const EConvertError& Error) {
            EXPECT_EQ(Error.Message, Row.Message);
        }
        EXPECT_TRUE(Table.Fields(0).IsNull());
    }
}

TEST_F(KvFieldConvert, RefusalKnowsFieldValueRuleAndRecord)
{
    const struct
    {
        TFieldDef Field;
        TVariant Given;
        std::string Value;
        TKvErrorRule Rule;
    } Rows[] = {
        {{.Name = "QTY", .DataType = ftInteger}, "abc", "abc", erConversion},
        {{.Name = "QTY", .DataType = ftSmallint}, 40000, "40000", erRange},
        {{.Name = "DAY", .DataType = ftDate},
         std::string(200, '9'),
         std::string(200, '9'),
         erConversion}, // whole
        {{.Name = "NAME", .DataType = ftString, .Size = 3}, "four", "four", erLength},
        {{.Name = "NAME"}, TVariant::Array(0, 1), "", erConversion},
    };
    for (const auto& Row : Rows) {
        TMemoryDataSet Table;
        Table.SetFieldDefs({Row.Field});
        Table.Open();
        Table.RecordTag = 17;
        Table.Append();
        try {
            Table.Fields(0).SetValue(Row.Given);
            ADD_FAILURE() << Row.Value << " was accepted";
        }
        catch (const EConvertError& Error) {
            EXPECT_EQ(Error.Facts.Field, Row.Field.Name);
            EXPECT_EQ(Error.Facts.Value, Row.Value);
            EXPECT_EQ(Error.Facts.Rule, Row.Rule) << Error.Message;
            EXPECT_EQ(Error.Facts.Record, 17);
        }
    }
}

TEST_F(KvFieldConvert, MessageQuotesTheBeginningOfALongValue)
{
    TMemoryDataSet Table;
    Table.SetFieldDefs({{"QTY", ftInteger}});
    Table.Open();
    Table.Append();
    std::string Long =
        std::string(79, 'x') + "\xC3\xBC" + std::string(20, 'y'); // the 80th byte starts a character
    try {
        Table.Fields(0).SetValue(Long);
        FAIL() << "was accepted";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message,
                  "'" + std::string(79, 'x') + "...' is not a valid integer value for field 'QTY'");
    }
}

// --- Sizes ------------------------------------------------------------------------------------------

TEST_F(KvFieldConvert, SizeCountsCharactersOfUtf8)
{
    EXPECT_EQ(CharacterCount(""), 0u);
    EXPECT_EQ(CharacterCount("abc"), 3u);
    EXPECT_EQ(CharacterCount("gr\xC3\xB6\xC3\x9F" "er"), 6u);
    EXPECT_EQ(CharacterCount("\xE2\x82\xAC\xF0\x9F\x98\x80"), 2u); // euro, smiling face

    TMemoryDataSet Table;
    Table.SetFieldDefs({{"NAME", ftString, 2}});
    Table.Open();
    Table.Append();
    EXPECT_NO_THROW(Table.Fields(0).SetValue("\xC3\xB6\xC3\x9F"));
    EXPECT_THROW(Table.Fields(0).SetValue("\xC3\xB6\xC3\x9Fx"), EConvertError);
}

TEST_F(KvFieldConvert, SizeCountsBytesOfSingleBytePages)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(CharacterCount("\xC3\xB6"), 2u);
    SetAnsiCodePage("65001");
    EXPECT_EQ(CharacterCount("\xC3\xB6"), 1u) << "UTF-8 by its number";
    SetAnsiCodePage("UTF-8");
}

TEST_F(KvFieldConvert, SizeZeroIsNoLimit)
{
    TMemoryDataSet Table;
    Table.SetFieldDefs({{"NAME", ftString}});
    Table.Open();
    Table.Append();
    EXPECT_NO_THROW(Table.Fields(0).SetValue(std::string(100000, 'x')));
}

// --- Digits of decimals -----------------------------------------------------------------------------

/// What storing `Value` in a field of that precision and scale says, empty when it is stored.
std::string Stored(int Precision, int Scale, const TVariant& Value)
{
    TMemoryDataSet Table;
    Table.SetFieldDefs({{.Name = "NET", .DataType = ftBCD, .Precision = Precision, .Scale = Scale}});
    Table.Open();
    Table.Append();
    try {
        Table.Fields(0).SetValue(Value);
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Facts.Rule, erRange);
        EXPECT_EQ(Error.Facts.Field, "NET");
        return Error.Message;
    }
    return {};
}

TEST_F(KvFieldConvert, DecimalsHaveAsManyDigitsAsTheirFieldHolds)
{
    EXPECT_EQ(Stored(5, 2, "123456.789"),
              "'123456.789' has more digits than field 'NET' holds: 3 before and 2 after the separator");
    const TVariant Fitting[] = {"999.99", "-999.99", 999, 0.29, 1.1, Money(9999900), "000123.4500", Null};
    for (const auto& Value : Fitting)
        EXPECT_EQ(Stored(5, 2, Value), "") << Value.ToText();
    const TVariant Surplus[] = {"1000", "-1000", 1000, 1000.0, 0.295, "0.001", "0.00001", 1e300};
    for (const auto& Value : Surplus)
        EXPECT_NE(Stored(5, 2, Value), "") << Value.ToText();
}

TEST_F(KvFieldConvert, DecimalsOfManyDigitsAreCountedAsText)
{
    EXPECT_EQ(Stored(18, 0, "999999999999999999"), "");
    EXPECT_NE(Stored(18, 0, "1000000000000000000"), "");
    EXPECT_EQ(Stored(20, 2, "123456789012345678.91"), "");
    EXPECT_NE(Stored(20, 1, "123456789012345678.91"), "");
    EXPECT_NE(Stored(19, 2, "123456789012345678.91"), "");
    EXPECT_EQ(Stored(30, 10, "-999999999999999999.9999999999"), "");
    EXPECT_EQ(Stored(0, 0, "123456789012345678.91"), ""); // no limit
}

} // namespace

} // namespace kv
