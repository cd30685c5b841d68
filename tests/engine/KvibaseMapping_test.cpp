#include "KvTestRun.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TTexts = std::vector<std::string>;

/// One record "1", "2", ... "9" into the open table (A, B, C: text).
struct TMappingRun : TTestRun
{
    TMappingRun()
    {
        Table.SetFieldDefs({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
        Table.Open();
        Import.Rows = {{"1", "2", "3", "4", "5", "6", "7", "8", "9"}};
    }

    void RunWith(const TStrings& Mappings, const char* Keys = "")
    {
        Import.SetMappings(Mappings);
        Import.DatasetKeys = Keys;
        Import.Mode = *Keys ? imAppendUpdate : imAppend;
        Execute();
    }
    /// The columns that were fetched, in order.
    std::string Fetched() const
    {
        std::string Result;
        for (const auto& Entry : Log.Of("GetFieldValue "))
            Result += (Result.empty() ? "" : ",") + Entry.substr(14);
        return Result;
    }
};

struct KvibaseMapping : testing::Test, TMappingRun
{
};

// --- Lines ------------------------------------------------------------------------------------------

struct TLinesRow
{
    const char* Name;
    TTexts Lines;
    const char* Fetched;
    const char* Record;
};

struct KvibaseLines : testing::TestWithParam<TLinesRow>, TMappingRun
{
};

TEST_P(KvibaseLines, AreMapped)
{
    TStrings Lines;
    for (const auto& Line : GetParam().Lines)
        Lines.Add(Line);
    RunWith(Lines);
    EXPECT_EQ(Fetched(), GetParam().Fetched);
    EXPECT_THAT(Records(), ElementsAre(GetParam().Record));
}

INSTANTIATE_TEST_SUITE_P(, KvibaseLines, testing::Values(
    TLinesRow{"InLineOrder",                {"B=Field2", "A=Field1"},            "Field2,Field1", "1;2;"},
    TLinesRow{"WithoutRegardToCase",        {"a=Field1"},                        "Field1",        "1;;"},
    TLinesRow{"WithoutBlanksAtTheEnds",     {"  A \t=  Field3  "},               "Field3",        "3;;"},
    TLinesRow{"FromAColumnNameWithSigns",   {"A=x=y"},                           "x=y",           "x=y;;"},
    TLinesRow{"FromAColumnNameWithBlanks",  {"A=Unit price"},                    "Unit price",
              "Unit price;;"},
    TLinesRow{"NotWithoutASource",          {"A=", "B=  ", "C=Field3"},          "Field3",        ";;3"},
    TLinesRow{"NotWithoutASign",            {"A", "B=Field2", ""},               "Field2",        ";2;"},
    TLinesRow{"FetchedEvenWithoutAField",   {"NOPE=Field9", "A=Field1"},         "Field9,Field1", "1;;"},
    TLinesRow{"FetchedEvenWithoutAName",    {"=Field9", "A=Field1"},             "Field9,Field1", "1;;"},
    TLinesRow{"TheLastOfEqualNamesWins",    {"A=Field1", "B=Field2", "a=Field3"}, "Field1,Field2,Field3",
              "3;2;"},
    TLinesRow{"OneColumnIntoTwoFields",     {"A=Field1", "B=Field1"},            "Field1,Field1", "1;1;"},
    TLinesRow{"NothingFromNoUsableLine",    {"A="},                              "",              ";;"}),
    [](const auto& Info) { return Info.param.Name; });

TEST_F(KvibaseMapping, ALineNamesAFieldWhoseNameHoldsAnEqualSign)
{
    const auto Split = [this](std::string_view Line) {
        return TKvImportBaseComponent::SplitMapping(Line, &Table);
    };
    using TPair = std::pair<std::string_view, std::string_view>;
    EXPECT_EQ(Split(" A = x=y "), TPair("A", "x=y")) << "up to the first sign, where that is a field";
    EXPECT_EQ(Split("X=Y=Field1"), TPair("X", "Y=Field1")) << "and where no name is one";
    EXPECT_EQ(Split("A"), TPair());
    Table.Close();
    Table.SetFieldDefs({{.Name = "A=B"}, {.Name = "C"}});
    Table.Open();
    EXPECT_EQ(Split("a=b = Field1=2"), TPair("a=b", "Field1=2"));
    EXPECT_EQ(TKvImportBaseComponent::SplitMapping("A=B=Field1", nullptr), TPair("A", "B=Field1"));
    RunWith({"A=B=Field2", "C=Field1"});
    EXPECT_EQ(Fetched(), "Field2,Field1");
    EXPECT_EQ(Table.FieldByName("A=B").AsString(), "2");
}

TEST_F(KvibaseMapping, TheLinesOfARunAreThoseGivenOrItsOwn)
{
    Import.Mappings().Clear();
    EXPECT_THAT(Import.RunMappings(), ElementsAre("A=A", "B=B", "C=C"));
    EXPECT_TRUE(Import.Mappings().IsEmpty()) << "its own do not stay";
    Import.SetMappings({"A=Field1"});
    EXPECT_THAT(Import.RunMappings(), ElementsAre("A=Field1"));
    EXPECT_EQ(Import.Mappings().Count(), 1);
}

TEST_F(KvibaseMapping, FieldsAreMappedInOrderWhereASourceIsNamed)
{
    Import.SetMappings({"X=kept"});
    Import.MapFields([](const TField& Field) {
        return Field.FieldName() == "B" ? "" : "Field" + std::to_string(Field.Index());
    });
    EXPECT_EQ(Import.Mappings(), (TStrings{"X=kept", "A=Field0", "C=Field2"}));
}

// --- Short names ------------------------------------------------------------------------------------

TEST_F(KvibaseMapping, ShortNamesKeepTenCharactersOfTheColumn)
{
    Import.NamesAreShort = true;
    RunWith({"A=CUSTOMER_NUMBER", "B= TENLETTERS ", "C=SHORT"});
    EXPECT_EQ(Fetched(), "CUSTOMER_N,TENLETTERS,SHORT");
}

TEST_F(KvibaseMapping, ShortNamesAreCutBetweenCharacters)
{
    Import.NamesAreShort = true;
    RunWith({"A=STRA\xC3\x9F" "ENNAME",
             "B=\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC"});
    EXPECT_EQ(Fetched(), "STRA\xC3\x9F" "ENNAM,"
                         "\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC");
}

TEST_F(KvibaseMapping, OtherNamesKeepTheirLength)
{
    RunWith({"A=CUSTOMER_NUMBER"});
    EXPECT_EQ(Fetched(), "CUSTOMER_NUMBER");
}

// --- Keys -------------------------------------------------------------------------------------------

struct TKeysRow
{
    const char* Name;
    const char* Keys;
    const char* Located;                            // what Locate was asked for, "-" for not at all
};

struct KvibaseKeys : testing::TestWithParam<TKeysRow>, TMappingRun
{
};

TEST_P(KvibaseKeys, AreTakenFromTheMappedFields)
{
    RunWith({"A=Field1", "B=Field2", "NOPE=Field3", "C="}, GetParam().Keys);
    const auto Located = Log.Of("locate");
    EXPECT_EQ(Located.empty() ? "-" : Located[0], GetParam().Located);
}

INSTANTIATE_TEST_SUITE_P(, KvibaseKeys, testing::Values(
    TKeysRow{"One",                   "A",     "locate 1"},
    TKeysRow{"InKeyOrder",            "B;A",   "locate 2;1"},
    TKeysRow{"WithoutRegardToCase",   "b;a",   "locate 2;1"},
    TKeysRow{"NamedTwiceTheSecondIsNull", "A;A", "locate 1;"},
    TKeysRow{"NotWithBlanks",         " A",    "-"},
    TKeysRow{"NotWithBlanksBetween",  "A ",    "-"},
    TKeysRow{"NotFromIgnoredLines",   "C",     "-"},
    TKeysRow{"NotUnmapped",           "X",     "-"}),
    [](const auto& Info) { return Info.param.Name; });

TEST_F(KvibaseMapping, KeyAndFieldOfEqualNamesTakeTheLastLine)
{
    Table.Fill({{"2", "old", Null}});
    RunWith({"A=Field1", "A=Field2", "B=Field3"}, "A");
    EXPECT_THAT(Log.Of("locate"), ElementsAre("locate 2"));
    EXPECT_THAT(Records(), ElementsAre("2;3;"));
}

TEST_F(KvibaseMapping, KeysTakeTheirValuesFromTheFieldsThatAreFetched)
{
    RunWith({"A=Field1", "B=Field2"}, "B");
    EXPECT_EQ(Fetched(), "Field1,Field2");          // the key is not fetched a second time
}

TEST_F(KvibaseMapping, KeysAreNotLookedForWhileAppending)
{
    Import.SetMappings({"A=Field1"});
    Import.DatasetKeys = "A";
    Execute();
    EXPECT_THAT(Log.Of("locate"), IsEmpty());
    EXPECT_THAT(Records(), ElementsAre("1;;"));
}

// --- What handlers see of it ------------------------------------------------------------------------

struct TSeen
{
    TVariant Values;

    void LookAt(TScriptedImport& Import)
    {
        Import.OnBeforeRecordEvent = [this](TKvImportBaseComponent&, const std::string& Fields,
                                            TVariant& Given, bool&) {
            EXPECT_EQ(Fields, "");
            Values = std::as_const(Given);
        };
    }
    std::string Element(int I) const
    {
        const auto& E = Values[I];
        return E[0].ToText() + "|" + E[1].ToText() + "|" + E[2].ToText() + "|" + E[3].ToText();
    }
};

TEST_F(KvibaseMapping, ElementsHoldNameColumnValueAndFieldIndex)
{
    TSeen Seen;
    Seen.LookAt(Import);
    RunWith({"c=Field3", "nope=Field2", "A=Field1"}, "A");
    ASSERT_TRUE(Seen.Values.IsArray());
    EXPECT_EQ(Seen.Values.LowBound(), 0);
    EXPECT_EQ(Seen.Values.HighBound(), 2);
    EXPECT_EQ(Seen.Element(0), "C|Field3|3|2");
    EXPECT_EQ(Seen.Element(1), "NOPE|Field2|2|-1");
    EXPECT_EQ(Seen.Element(2), "A|Field1|1|0");
}

TEST_F(KvibaseMapping, FieldItemIsTheFirstElementOfAColumn)
{
    EXPECT_EQ(Import.GetFieldItem("Field1"), -1);
    RunWith({"A=Field1", "B=Field2", "C=Field2"});
    EXPECT_EQ(Import.GetFieldItem("Field1"), 0);
    EXPECT_EQ(Import.GetFieldItem("Field2"), 1);
    EXPECT_EQ(Import.GetFieldItem("FIELD2"), -1);
    EXPECT_EQ(Import.GetFieldItem("A"), -1);
}

TEST_F(KvibaseMapping, EachRunMapsAnew)
{
    RunWith({"A=Field1", "B=Field2"}, "A");
    RunWith({"C=Field9"});
    EXPECT_EQ(Fetched(), "Field9");
    EXPECT_EQ(Import.GetFieldItem("Field1"), -1);
}

TEST(KvibaseMappingNames, AreMatchedInAnyCaseOfAllScripts)
{
    TTestRun Run;
    Run.Table.Close();
    Run.Table.SetFieldDefs({{.Name = "Gr\xC3\xB6\xC3\x9F" "e"}, {.Name = "\xD0\x93\xD0\xBE\xD0\xB4"}});
    Run.Table.Open();
    Run.Table.Fill({{"1", "old"}});
    Run.Import.SetMappings({"GR\xC3\x96\xC3\x9F" "E=Field1", "\xD0\xB3\xD0\x9E\xD0\x94=Field2"});
    Run.Import.Mode = imAppendUpdate;
    Run.Import.DatasetKeys = "gr\xC3\xB6\xC3\x9F" "E";
    Run.Import.Rows = {{"1", "new"}, {"2", "added"}};
    Run.Execute();
    EXPECT_EQ(Run.Counters(), "2/1/1/0/0");
    EXPECT_EQ(Run.Records(), (std::vector<std::string>{"1;new", "2;added"}));
}

TEST(KvibaseMappingNames, MayHoldAnEqualsSign)
{
    TTestRun Run;
    Run.Table.Close();
    Run.Table.SetFieldDefs({{.Name = "A=B"}, {.Name = "C"}});
    Run.Table.Open();
    Run.Import.Rows = {{"1", "2"}};
    Run.Import.SetMappings({" a=b = Field1", "C=x=y"});
    Run.Execute();
    EXPECT_EQ(Run.Records(), std::vector<std::string>{"1;x=y"});
    Run.Import.SetMappings({"A=B", "C=Field2"});    // no field A: a line for nothing
    Run.Execute();
    EXPECT_EQ(Run.Records(), (std::vector<std::string>{"1;x=y", ";2"}));
}

} // namespace

} // namespace kv
