#include "KvTestRun.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr TFieldType AllTypes[] = {
    ftUnknown, ftString, ftFixedChar, ftSmallint, ftInteger, ftWord, ftAutoInc, ftLargeint, ftBoolean,
    ftFloat, ftCurrency, ftBCD, ftDate, ftTime, ftDateTime, ftMemo, ftFmtMemo, ftBytes, ftVarBytes, ftBlob,
    ftGraphic, ftOle, ftGuid, ftVariant};

/// A table with one field of every type, its index that of the type.
struct TConvertRun : TTestRun
{
    TConvertRun()
    {
        std::vector<TFieldDef> Defs;
        for (const auto Type : AllTypes)
            Defs.push_back({.Name = "F" + std::to_string(Type), .DataType = Type});
        Table.SetFieldDefs(Defs);
        Table.Open();
    }

    /// A column that is no "Field<N>" is a constant: its own value.
    TVariant Parse(const TVariant& Value, TFieldType Type) { return Import.GetParsedValue(Value, Type); }
};

struct KvibaseConvert : testing::Test, TConvertRun
{
};

TVariant DateTime(double Days) { return TDateTime{Days}; }

std::string Described(const TVariant& Value)
{
    static constexpr const char* Kinds[] = {"empty", "null", "integer", "double", "currency", "date-time",
                                            "boolean", "string", "array"};
    return std::string(Kinds[Value.Kind()]) + " " + (Value.IsArray() ? "" : Value.ToText());
}

#define EXPECT_SAME(Actual, Expected) EXPECT_EQ(Described(Actual), Described(Expected))

// --- Blank and unmapped -----------------------------------------------------------------------------

TEST_F(KvibaseConvert, BlanksGiveNullForEveryType)
{
    for (const auto Type : AllTypes)
        for (const char* const Blank : {"", " ", "  \t\r\n "})
            EXPECT_SAME(Parse(Blank, Type), Null);
    EXPECT_THAT(Log.Of("error"), IsEmpty());
}

TEST_F(KvibaseConvert, NoValueGivesNull)
{
    EXPECT_SAME(Parse(Null, ftString), Null);
    EXPECT_SAME(Parse(TVariant(), ftFloat), Null);
    EXPECT_SAME(Import.GetParsedValue("  ", -1), Null);
}

TEST_F(KvibaseConvert, WithoutAFieldTheValueStays)
{
    EXPECT_SAME(Import.GetParsedValue("1,234.50", -1), "1,234.50");
    EXPECT_SAME(Import.GetParsedValue(7, -1), 7);
}

TEST_F(KvibaseConvert, TextsIntegersAndBytesStayAsTheyAre)
{
    for (const auto Type : {ftUnknown, ftString, ftFixedChar, ftSmallint, ftInteger, ftWord, ftAutoInc,
                            ftLargeint, ftMemo, ftFmtMemo, ftBytes, ftVarBytes, ftBlob, ftGraphic, ftOle,
                            ftGuid, ftVariant})
        EXPECT_SAME(Parse(" 1,234.50 ", Type), " 1,234.50 ");
}

// --- Boolean ----------------------------------------------------------------------------------------

TEST_F(KvibaseConvert, BooleanWordsAreComparedToTheLetter)
{
    Import.DataFormats.BooleanTrue = "Yes";
    Import.DataFormats.BooleanFalse = "No";
    EXPECT_SAME(Parse("Yes", ftBoolean), true);
    EXPECT_SAME(Parse("No", ftBoolean), false);
    EXPECT_SAME(Parse("yes", ftBoolean), "yes");
    EXPECT_SAME(Parse(" No", ftBoolean), " No");
    EXPECT_SAME(Parse("True", ftBoolean), "True");
}

TEST_F(KvibaseConvert, BooleanWordsAreComparedWithTheTextOfAnyValue)
{
    Import.DataFormats.BooleanTrue = "1";
    EXPECT_SAME(Parse(1, ftBoolean), true);
    EXPECT_SAME(Parse(2, ftBoolean), 2);
    EXPECT_SAME(Parse(false, ftBoolean), false);    // "False"
}

TEST_F(KvibaseConvert, TrueWinsWhereBothWordsAreTheSame)
{
    Import.DataFormats.BooleanTrue = Import.DataFormats.BooleanFalse = "X";
    EXPECT_SAME(Parse("X", ftBoolean), true);
}

// --- Numbers ----------------------------------------------------------------------------------------

TEST_F(KvibaseConvert, NumbersFollowTheSeparators)
{
    Import.DataFormats.ThousandSeparator = ',';
    Import.DataFormats.DecimalSeparator = '.';
    for (const auto Type : {ftFloat, ftCurrency, ftBCD}) {
        EXPECT_SAME(Parse("1,234.50", Type), 1234.5);
        EXPECT_SAME(Parse(" 1,2,3,4 ", Type), 1234.0); // wherever it stands
        EXPECT_SAME(Parse("-1e3", Type), -1000.0);
    }
    Import.DataFormats.ThousandSeparator = '.';
    Import.DataFormats.DecimalSeparator = ',';
    EXPECT_SAME(Parse("1.234,50", ftFloat), 1234.5);
    EXPECT_EQ(FormatSettings().DecimalSeparator, '.');
}

TEST_F(KvibaseConvert, ThousandSeparatorGoesEvenWhereItIsTheDecimalOne)
{
    Import.DataFormats.ThousandSeparator = Import.DataFormats.DecimalSeparator = '.';
    EXPECT_SAME(Parse("1.5", ftFloat), 15.0);
}

TEST_F(KvibaseConvert, NumbersOfTheSourceStayNumbers)
{
    Import.DataFormats.ThousandSeparator = '.';
    EXPECT_SAME(Parse(1.5, ftFloat), 1.5);
    EXPECT_SAME(Parse(std::int64_t{9007199254740993}, ftBCD), std::int64_t{9007199254740993});
    EXPECT_SAME(Parse(TCurrency{12345}, ftCurrency), TCurrency{12345});
}

TEST_F(KvibaseConvert, MalformedNumberShowsItsMessageOnceAndStaysText)
{
    Import.DataFormats.DecimalSeparator = ',';
    Import.DataFormats.ThousandSeparator = '.';
    EXPECT_SAME(Parse("1.2 Liter", ftFloat), "1.2 Liter");
    EXPECT_THAT(Log.Entries,
                testing::Contains("error '12 Liter' is not a valid floating point value").Times(1));
    EXPECT_EQ(FormatSettings().DecimalSeparator, '.');
}

TEST_F(KvibaseConvert, SeparatorsAreRestoredWhenTheMessageCannotBeShown)
{
    Import.DataFormats.DecimalSeparator = ',';
    Log.Refuse("error 'x' is not a valid floating point value");
    EXPECT_THROW(Parse("x", ftFloat), EDatabaseError);
    EXPECT_EQ(FormatSettings().DecimalSeparator, '.');
}

TEST_F(KvibaseConvert, MalformedNumberIsShownAndThenFailsInTheField)
{
    Import.SetMappings({"F9=Field1"});              // ftFloat
    Import.Rows = {{"abc"}};
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Of("error"), ElementsAre("error 'abc' is not a valid floating point value"));
    EXPECT_THAT(Log.Of("OnErrorEvent"),
                ElementsAre("OnErrorEvent 'abc' is not a valid floating point value for field 'F9'"));
    EXPECT_EQ(Counters(), "1/0/0/0/1");
}

// --- Dates and times --------------------------------------------------------------------------------

TEST_F(KvibaseConvert, DatesFollowTheSeparatorsAndTheOrderOfTheProcess)
{
    const auto Date = DateTime(37621);              // 31 December 2002
    Import.DataFormats.DateSeparator = '.';
    EXPECT_SAME(Parse("31.12.2002", ftDate), "31.12.2002");
    EXPECT_SAME(Parse("12.31.2002", ftDate), Date);
    FormatSettings().ShortDateFormat = "dd/MM/yyyy";
    EXPECT_SAME(Parse("31.12.2002", ftDate), Date);
    Import.DataFormats.DateOrder = doYMD;           // offered to users, not used
    EXPECT_SAME(Parse("31.12.2002", ftDate), Date);
    EXPECT_SAME(Parse("2002.12.31", ftDate), "2002.12.31");
    EXPECT_EQ(FormatSettings().DateSeparator, '/');
}

TEST_F(KvibaseConvert, TimesFollowTheSeparator)
{
    Import.DataFormats.TimeSeparator = '-';
    EXPECT_SAME(Parse("18-30", ftTime), DateTime(18.5 / 24));
    EXPECT_SAME(Parse("12/31/2002 06-00", ftDateTime), DateTime(37621.25));
    EXPECT_SAME(Parse("18:30", ftTime), "18:30");
    EXPECT_EQ(FormatSettings().TimeSeparator, ':');
}

TEST_F(KvibaseConvert, MalformedDateStaysTextInSilence)
{
    for (const auto Type : {ftDate, ftTime, ftDateTime})
        EXPECT_SAME(Parse("soon", Type), "soon");
    EXPECT_THAT(Log.Of("error"), IsEmpty());
}

TEST_F(KvibaseConvert, DatesOfTheSourceStayDates)
{
    FormatSettings().ShortDateFormat = "no date at all";
    EXPECT_SAME(Parse(TDateTime{37621.5}, ftDateTime), DateTime(37621.5));
}

// --- LoadRecord -------------------------------------------------------------------------------------

/// The converted values of one record that OnGetCellParams is offered.
struct KvibaseLoad : testing::Test, TTestRun
{
    KvibaseLoad()
    {
        Table.SetFieldDefs({{.Name = "T"}, {.Name = "N", .DataType = ftInteger},
                            {.Name = "D", .DataType = ftDate},
                            {.Name = "B", .DataType = ftBoolean}});
        Table.Open();
        Import.SetMappings({"T=Field1", "N=Field2", "D=Field3", "B=Field4", "X=Field5"});
        Import.Rows = {{"\x81" "ber", "5", "12/31/2002", "True", "\x84"}};
    }

    void NoteCells()
    {
        Import.OnGetCellParams = [this](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
            Cells.push_back((Field ? Field->FieldName() : "none") + "=" + Described(Value));
        };
    }

    std::vector<std::string> Cells;
};

TEST_F(KvibaseLoad, CellsAreOfferedConvertedWithTheirFields)
{
    NoteCells();
    Execute();
    EXPECT_THAT(Cells,
                ElementsAre("T=string \x81" "ber", "N=string 5", "D=date-time 12/31/2002", "B=boolean True",
                            "none=string \x84"));
}

TEST_F(KvibaseLoad, TextOfMsDosIsConvertedButNotNumbersAndDates)
{
    Import.CharacterSet = csiASCII_MSDOS;
    NoteCells();
    Execute();
    EXPECT_THAT(Cells, ElementsAre("T=string \xC3\xBC" "ber", "N=string 5", "D=date-time 12/31/2002",
                                   "B=string True", "none=string \xC3\xA4"));
}

TEST_F(KvibaseLoad, ConversionFromMsDosTurnsNullIntoEmptyText)
{
    Import.CharacterSet = csiASCII_MSDOS;
    Import.Rows = {{" ", " ", " ", " ", " "}};
    NoteCells();
    Execute();
    EXPECT_THAT(Cells, ElementsAre("T=string ", "N=null ", "D=null ", "B=string ", "none=string "));
    EXPECT_TRUE(Table.Fields(0).IsNull());          // and the field is cleared all the same
}

TEST_F(KvibaseLoad, ConversionFromMsDosNeedsNoHandler)
{
    Import.CharacterSet = csiASCII_MSDOS;
    Execute();
    EXPECT_THAT(Records(), ElementsAre("\xC3\xBC" "ber;5;12/31/2002;True"));
}

TEST_F(KvibaseLoad, ValueThatAHandlerSetsIsWritten)
{
    Import.OnGetCellParams = [](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        if (Field && Field->FieldName() == "N")
            Value = 6;
        if (Field && Field->FieldName() == "T")
            Value = Null;
    };
    Execute();
    EXPECT_THAT(Records(), ElementsAre(";6;12/31/2002;True"));
}

TEST_F(KvibaseLoad, ValueOfAnotherKindReplacesAnEqualOne)
{
    Import.Rows = {{"x", 5, Null, Null, Null}};
    TVariantKind Kind{};
    Import.OnGetCellParams = [](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        if (Field && Field->FieldName() == "N")
            Value = 5.0;
    };
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        Kind = Values[1][2].Kind();
    };
    Execute();
    EXPECT_EQ(Kind, vkDouble);
}

TEST_F(KvibaseLoad, ValuesThatTheRecordHandlerSetsAreWritten)
{
    Import.OnBeforeRecordEvent = [](TKvImportBaseComponent&, const std::string&, TVariant& Values,
                                    bool& Accept) {
        EXPECT_TRUE(Accept);
        Values[0][2] = "changed";
        Values[1][2] = Null;
    };
    Execute();
    EXPECT_THAT(Records(), ElementsAre("changed;;12/31/2002;True"));
}

TEST_F(KvibaseLoad, RecordHandlerSeesWhatTheCellHandlerSet)
{
    std::string Seen;
    Import.OnGetCellParams = [](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        if (!Field)
            Value = "from the cell";
    };
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        Seen = Values[4][2].ToText();
    };
    Execute();
    EXPECT_EQ(Seen, "from the cell");
}

TEST_F(KvibaseLoad, RecordHandlerThatSpoilsTheArrayFailsTheRun)
{
    Import.OnBeforeRecordEvent = [](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        Values = "gone";
    };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "Variant is not an array");
}

TEST_F(KvibaseLoad, RecordHandlerWithoutMappedFieldsGetsAnEmptyArray)
{
    Import.SetMappings({"T="});
    int High = 0;
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        High = Values.HighBound();
    };
    Execute();
    EXPECT_EQ(High, -1);
    EXPECT_EQ(Counters(), "1/1/0/0/0");
}

TEST_F(KvibaseLoad, ArrayIsAnErrorOfTheRecord)
{
    auto Array = TVariant::Array(0, 1);
    Import.Rows = {{Array, "5", Null, Null, Null}, {"x", "6", Null, Null, Null}};
    Execute();
    EXPECT_EQ(Counters(), "2/2/0/0/1");
    EXPECT_THAT(Records(), ElementsAre("x;6;;"));
}

TEST_F(KvibaseLoad, HandlersMayKeepTheValuesTheySee)
{
    std::vector<TVariant> Kept;
    const std::string Long(100, 'x');
    Import.Rows = {{Long, "5", Null, Null, Null}, {"y", "6", Null, Null, Null}};
    Import.OnGetCellParams = [&](TKvImportBaseComponent&, TField*, TVariant& Value) {
        Kept.push_back(Value);
    };
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        Kept.push_back(Values[0][2]);
    };
    Execute();
    EXPECT_EQ(Kept.front().ToText(), Long);
    EXPECT_EQ(Kept[5].ToText(), Long);
}

TEST_F(KvibaseLoad, UECodeConvertsOnRequest)
{
    EXPECT_EQ(Import.UECode(true, "\x81"), "\xC3\xBC");
    EXPECT_EQ(Import.UECode(false, "\x81"), "\x81");
}

// --- The first field, and moments -------------------------------------------------------------------

TEST_F(KvibaseConvert, TheFirstFieldIsAFieldAsAnyOther)
{
    Table.Close();
    Table.SetFieldDefs({{.Name = "NET", .DataType = ftFloat}, {.Name = "NAME", .DataType = ftString}});
    Table.Open();
    Import.DataFormats.ThousandSeparator = '.';
    Import.DataFormats.DecimalSeparator = ',';
    Import.SetMappings({"NET=Field1", "NAME=Field2"});
    Import.CharacterSet = csiASCII_MSDOS;
    std::vector<std::string> Offered;
    Import.OnGetCellParams = [&](TKvImportBaseComponent&, TField* Field, TVariant&) {
        Offered.push_back(Field ? Field->FieldName() : "none");
    };
    std::vector<std::string> Failed;
    Import.OnErrorEvent = [&](TKvImportBaseComponent&, const Exception& Error, bool&) {
        Failed.push_back(Error.Facts.Field + ": " + Error.Facts.Value);
    };
    Import.RunExtensions = {rxNoNumberBoxes};
    Import.Rows = {{"1.234,5", "Ada"}, {"n/a", "Bob"}};
    Execute();
    EXPECT_THAT(Records(), ElementsAre("1234.5;Ada"));
    EXPECT_THAT(Offered, ElementsAre("NET", "NAME", "NET", "NAME"));
    EXPECT_THAT(Failed, ElementsAre("NET: n/a"));
}

TEST_F(KvibaseConvert, MomentsDoNotPassThroughText)
{
    const double Days = 45296 + 1.0 / 7;            // of no whole millisecond
    for (const auto Type : {ftDateTime, ftTime, ftDate})
        EXPECT_EQ(Parse(DateTime(Days), Type), DateTime(Days));
}

} // namespace

} // namespace kv
