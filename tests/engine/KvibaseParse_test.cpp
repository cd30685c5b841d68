// How values get the kind of a field with the extensions of a run. The older rules: KvibaseConvert_test.
#include "KvDateText.h"
#include "KvTestRun.h"

namespace kv {

namespace {

struct TParsed
{
    int Line;
    TFieldType Type;
    TVariant Given;
    TVariant Expected;
};

/// A table with one field of every type, its index that of the type.
struct KvibaseParse : testing::Test, TTestRun
{
    KvibaseParse()
    {
        std::vector<TFieldDef> Defs;
        for (int Type = ftUnknown; Type <= ftVariant; ++Type)
            Defs.push_back({.Name = "F" + std::to_string(Type), .DataType = static_cast<TFieldType>(Type)});
        Table.SetFieldDefs(Defs);
        Table.Open();
        Import.RunExtensions = {rxNoNumberBoxes};
        Import.DataFormats.ThousandSeparator = ',';
        Import.DataFormats.DecimalSeparator = '.';
    }
    ~KvibaseParse() override { EXPECT_TRUE(Log.Of("error").empty()); }

    TVariant Parse(const TVariant& Value, TFieldType Type) { return Import.GetParsedValue(Value, Type); }

    template <std::size_t Count> void ExpectParsed(const TParsed (&Rows)[Count])
    {
        for (const auto& [Line, Type, Given, Expected] : Rows) {
            SCOPED_TRACE("line " + std::to_string(Line));
            const auto Value = Parse(Given, Type);
            EXPECT_EQ(Value.Kind(), Expected.Kind());
            EXPECT_EQ(Value.ToText(), Expected.ToText());
            EXPECT_EQ(Value, Expected);
        }
    }
};

TVariant Moment(double Days) { return TDateTime{Days}; }
TVariant Money(std::int64_t Scaled) { return TCurrency{Scaled}; }

// --- rxExactNumbers ---------------------------------------------------------------------------------

struct KvibaseParseExact : KvibaseParse
{
    KvibaseParseExact() { Import.RunExtensions.Include(rxExactNumbers); }
};

TEST_F(KvibaseParseExact, DecimalsKeepEveryDigit)
{
    const TParsed Rows[] = {
        {__LINE__, ftBCD, "12345678901234567", std::int64_t{12345678901234567}},
        {__LINE__, ftBCD, "1,234.50", Money(12345000)},
        {__LINE__, ftBCD, "123456789012.345678", "123456789012.345678"},
        {__LINE__, ftBCD, "-999999999999999999.9999999999", "-999999999999999999.9999999999"},
        {__LINE__, ftBCD, "0.000001", 0.000001},
        {__LINE__, ftCurrency, "922337203685477.58", Money(9223372036854775800)},
        {__LINE__, ftBCD, std::int64_t{12345678901234567}, std::int64_t{12345678901234567}},
        {__LINE__, ftBCD, Money(1), Money(1)},
        {__LINE__, ftBCD, "n/a", "n/a"},
    };
    ExpectParsed(Rows);
}

TEST_F(KvibaseParseExact, DigitsThatStayTextHaveTheSeparatorOfTheProcess)
{
    Import.DataFormats.ThousandSeparator = '.';
    Import.DataFormats.DecimalSeparator = ',';
    EXPECT_EQ(Parse("123.456.789.012.345.678,91", ftBCD), TVariant("123456789012345678.91"));
}

TEST_F(KvibaseParseExact, DoublesReachExactFieldsAsTheyAreShown)
{
    const TParsed Rows[] = {
        {__LINE__, ftLargeint, 4000123412341234.0, std::int64_t{4000123412341234}},
        {__LINE__, ftInteger, 4.35 * 100, 435},
        {__LINE__, ftBCD, 4.35 * 100, 435},
        {__LINE__, ftBCD, 0.1 + 0.2, 0.3},
        {__LINE__, ftString, 4.35 * 100, "435"},
        {__LINE__, ftMemo, 4000123412341234.0, "4000123412341234"},
        {__LINE__, ftString, 1e20, "100000000000000000000"},
        {__LINE__, ftFloat, 0.1 + 0.2, 0.1 + 0.2},
        {__LINE__, ftInteger, 435.4, 435.4},
        {__LINE__, ftLargeint, 1e19, 1e19},
        {__LINE__, ftVariant, 0.1 + 0.2, 0.1 + 0.2},
    };
    ExpectParsed(Rows);
}

TEST_F(KvibaseParseExact, IntegerFieldsTakeWholeNumbersAndTruth)
{
    const TParsed Rows[] = {
        {__LINE__, ftInteger, "42", 42},
        {__LINE__, ftLargeint, "9223372036854775807", std::int64_t{INT64_MAX}},
        {__LINE__, ftLargeint, "2.000000000000000", 2},
        {__LINE__, ftSmallint, "-1.0", -1},
        {__LINE__, ftInteger, "1E3", 1000},
        {__LINE__, ftInteger, true, 1},
        {__LINE__, ftInteger, false, 0},
        {__LINE__, ftInteger, "True", 1},
        {__LINE__, ftInteger, "False", 0},
        {__LINE__, ftInteger, "true", "true"},
        {__LINE__, ftInteger, "1.5", "1.5"},
        {__LINE__, ftInteger, "1,000", "1,000"},
        {__LINE__, ftInteger, "9223372036854775808", "9223372036854775808"},
    };
    ExpectParsed(Rows);
}

TEST_F(KvibaseParseExact, WholeNumbersAreStoredInFieldsOf64Bits)
{
    Table.Close();
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftLargeint}, {.Name = "NAME", .DataType = ftString}});
    Table.Open();
    Import.Rows = {{4000123412341234.0, 1.0}, {true, "x"}, {435.4, "refused"}};
    Execute();
    EXPECT_EQ(Records(), (std::vector<std::string>{"4000123412341234;1", "1;x"}));
}

// --- rxWrittenForms ---------------------------------------------------------------------------------

struct KvibaseParseWritten : KvibaseParse
{
    KvibaseParseWritten() { Import.RunExtensions.Include(rxWrittenForms); }
};

TEST_F(KvibaseParseWritten, NumbersAreReadAsPeopleWriteThem)
{
    const TParsed Rows[] = {
        {__LINE__, ftFloat, "1,234.5", 1234.5},
        {__LINE__, ftFloat, "5.5-", -5.5},
        {__LINE__, ftBCD, "\xE2\x88\x92" "7", -7.0},
        {__LINE__, ftFloat, "1\xC2\xA0" "234.5", 1234.5},
        {__LINE__, ftCurrency, "1\xE2\x80\xAF" "234", 1234.0},
        {__LINE__, ftInteger, "1,000", 1000},
        {__LINE__, ftLargeint, "5-", -5},
        {__LINE__, ftInteger, "1.0", "1.0"},
        {__LINE__, ftInteger, "True", "True"},
        {__LINE__, ftString, "1,000", "1,000"},
    };
    ExpectParsed(Rows);
}

TEST_F(KvibaseParseWritten, SeparatorsThatDoNotGroupMakeNoNumber)
{
    for (const char* const Text : {"1,5", "1,23", "12,3456", "1,234,5"}) {
        EXPECT_EQ(Parse(Text, ftFloat), TVariant(Text));
        EXPECT_EQ(Parse(Text, ftBCD), TVariant(Text));
        EXPECT_EQ(Parse(Text, ftInteger), TVariant(Text));
    }
}

TEST_F(KvibaseParseWritten, MomentsOfPacketsAreRead)
{
    FormatSettings().ShortDateFormat = "dd.MM.yyyy";
    Import.DataFormats.DateSeparator = '.';
    const double Expected = 45296 + (10 * 3600 + 20 * 60 + 30) / 86400.0;
    for (const char* const Text :
         {"2024-01-05T10:20:30Z", "2024-01-05T10:20:30", " 2024-01-05T10:20:30.000Z "})
        EXPECT_NEAR(Parse(Text, ftDateTime).DateTime().Days, Expected, 1e-9) << Text;
    EXPECT_EQ(Parse("2024-01-05", ftDateTime), TVariant("2024-01-05")); // not the order of this source
}

TEST_F(KvibaseParseWritten, BothMakeIntegersOfGroupedNumbersWithAFraction)
{
    Import.RunExtensions.Include(rxExactNumbers);
    EXPECT_EQ(Parse("1,000.00", ftInteger), TVariant(1000));
    EXPECT_EQ(Parse("1,000.50", ftInteger), TVariant("1,000.50"));
}

// --- rxTimesAlone -----------------------------------------------------------------------------------

struct KvibaseParseTimes : KvibaseParse
{
    KvibaseParseTimes() { Import.RunExtensions.Include(rxTimesAlone); }
};

TEST_F(KvibaseParseTimes, ATimeIsTextAsSuch)
{
    const TParsed Rows[] = {
        {__LINE__, ftString, Moment(0.5), "12:00:00"},
        {__LINE__, ftString, Moment(0), "00:00:00"},
        {__LINE__, ftMemo, Moment(1.5), "36:00:00"},
        {__LINE__, ftString, Moment(-1.0 / 24), "-01:00:00"},
        {__LINE__, ftString, Moment(1), Moment(1)},
        {__LINE__, ftString, Moment(45296), Moment(45296)},
        {__LINE__, ftTime, Moment(0.5), Moment(0.5)},
        {__LINE__, ftTime, Moment(1.5), "36:00:00"},
        {__LINE__, ftTime, Moment(-1.0 / 24), "-01:00:00"},
        {__LINE__, ftTime, Moment(1 - 1e-12), "24:00:00"},
        {__LINE__, ftDateTime, Moment(0.5), Moment(0.5)},
    };
    ExpectParsed(Rows);
}

TEST_F(KvibaseParseTimes, ATimeIsNoDate)
{
    const TParsed Rows[] = {
        {__LINE__, ftDate, Moment(0.5), "12:00:00"},
        {__LINE__, ftDate, Moment(0), "00:00:00"},
        {__LINE__, ftDate, "00:00", "00:00"},
        {__LINE__, ftDate, "1/5/2024", Moment(45296)},
        {__LINE__, ftDate, Moment(45296), Moment(45296)},
    };
    Import.DataFormats.DateSeparator = '/';
    ExpectParsed(Rows);
    Table.Close();
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftDate}, {.Name = "NAME", .DataType = ftString}});
    Table.Open();
    Import.Rows = {{Moment(0), "midnight"}, {"00:00", "text"}, {Moment(45296), "day"}};
    Execute();
    EXPECT_EQ(Counters(), "3/3/0/0/2");
    EXPECT_EQ(Records(), std::vector<std::string>{"1/5/2024;day"});
}

// --- rxFormatsInForce -------------------------------------------------------------------------------

TEST_F(KvibaseParse, DateOrderDecidesWithTheFormatsInForce)
{
    Table.Close();
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftDate}, {.Name = "NAME", .DataType = ftString}});
    Table.Open();
    Import.DataFormats.DateSeparator = '.';
    Import.RunExtensions.Include(rxFormatsInForce);
    const std::pair<TKvIDateOrder, const char*> Rows[] = {
        {doMDY, "01.05.2024"}, {doDMY, "05.01.2024"}, {doYMD, "2024.01.05"},
        {doYDM, "2024.05.01"}, {doDYM, "05.2024.01"}, {doMYD, "01.2024.05"}};
    for (const auto& [Order, Text] : Rows) {
        Import.DataFormats.DateOrder = Order;
        Import.Rows = {{Text, "Ada"}};
        Import.OnAfterRecordEvent = [Text = Text](TKvImportBaseComponent&, bool&) {
            EXPECT_EQ(TryTextToDateTime(Text), TDateTime{45296}) << Text;
        };
        Execute();
        EXPECT_EQ(Import.Statistic.TotalErrors, 0) << Text;
        EXPECT_EQ(FormatSettings().ShortDateFormat, "M/d/yyyy"); // of the process again
    }
    EXPECT_EQ(Records(), std::vector<std::string>(6, "1/5/2024;Ada"));
}

TEST_F(KvibaseParse, DateOrderDecidesNothingWithout)
{
    Import.DataFormats.DateSeparator = '.';
    Import.DataFormats.DateOrder = doDMY;
    EXPECT_EQ(Parse("05.01.2024", ftDate), Moment(45413)); // 1 May, as the process has it
}

TEST_F(KvibaseParse, WhatHandlersHaveSetInTheProcessStaysWithout)
{
    Import.Rows = {{1, "Ada"}};
    Import.OnAfterRecordEvent = [](TKvImportBaseComponent&, bool&) { FormatSettings().DateSeparator = '|'; };
    Execute();
    EXPECT_EQ(FormatSettings().DateSeparator, '|');
}

} // namespace

} // namespace kv
