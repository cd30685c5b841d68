#include "KvJobPlan.h"

#include <gmock/gmock.h>

#include "KvDbaseBuilder.h"
#include "KvJobTestSource.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TJobPlanSettings ByLines(std::vector<std::string> Lines)
{
    return {.Mapping = jmByLines, .Lines = std::move(Lines)};
}

/// What becomes of each column.
std::vector<TJobFate> FatesOf(const TJobPlan& Plan)
{
    std::vector<TJobFate> Fates;
    for (const auto& Fate : Plan.Columns)
        Fates.push_back(Fate.Fate);
    return Fates;
}

struct KvJobPlan : testing::Test
{
    TJobTestTable Table;
};

TEST_F(KvJobPlan, JoinsByNameWithoutRegardToCase)
{
    TJobTestSource File("orders.csv", "city,TOTAL,x,Id,\n");
    const auto Plan = MakePlan(File.Look(), Table, {});
    EXPECT_THAT(Plan.Lines, ElementsAre("CITY=Field1", "ID=Field4"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcReadOnly, jcNoField, jcMapped, jcNoTitle));
    ASSERT_EQ(Plan.FieldsWithout.size(), 2);
    EXPECT_EQ(Plan.FieldsWithout[0].Fate, jdComputed);
    EXPECT_EQ(Plan.FieldsWithout[1].Fate, jdRequired);
}

TEST_F(KvJobPlan, ASecondColumnOfANameIsLeftOut)
{
    TJobTestSource File("orders.csv", "ID,CITY,City\n");
    const auto Plan = MakePlan(File.Look(), Table, {});
    EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "CITY=Field2"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcMapped, jcTitleTwice));
}

TEST_F(KvJobPlan, IsRefusedWhenNoNameFits)
{
    TJobTestSource File("orders.csv", "A,B\n");
    const auto Found = RefusalOf([&] { MakePlan(File.Look(), Table, {}); });
    EXPECT_EQ(Found.Kind, jfNoColumnMatches);
    EXPECT_THAT(Found.Names, ElementsAre("A", "B"));
    EXPECT_THAT(Found.Fields, ElementsAre("ID", "CITY", "TOTAL", "NOTE"));
}

TEST_F(KvJobPlan, IsRefusedWhenThereIsNoHeader)
{
    TJobTestSource File("orders.csv", "");
    const auto Found = RefusalOf([&] { MakePlan(File.Look(), Table, {}); });
    EXPECT_EQ(Found.Kind, jfNoHeader);
    EXPECT_EQ(Found.Unit, "line");
}

TEST_F(KvJobPlan, JoinsByPosition)
{
    TJobTestSource File("orders.csv", "1,2,3,4,5\n");
    const auto Plan = MakePlan(File.Look({.FindTitles = false}), Table, {.Mapping = jmByPosition});
    EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "CITY=Field2", "NOTE=Field4"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcMapped, jcReadOnly, jcMapped, jcNoMoreFields));
}

TEST_F(KvJobPlan, IsRefusedWhenThereIsNoColumnToImport)
{
    TJobTestSource File("orders.csv", "");
    EXPECT_EQ(
        RefusalOf([&] { MakePlan(File.Look({.FindTitles = false}), Table, {.Mapping = jmByPosition}); }).Kind,
        jfNoColumns);
}

TEST_F(KvJobPlan, TakesLinesAsTheyAreGiven)
{
    TJobTestSource File("orders.csv", "1,2\n");
    const auto Plan = MakePlan(File.Look({.FindTitles = false}), Table, ByLines({" city = Field2"}));
    EXPECT_THAT(Plan.Lines, ElementsAre("CITY=Field2"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcNotMapped));
}

TEST_F(KvJobPlan, AColumnThatTheFirstRowLacksMayComeLater)
{
    TJobTestSource File("orders.csv", "1,2\n3,4,5\n");
    const auto Plan =
        MakePlan(File.Look({.FindTitles = false}), Table, ByLines({"ID=Field1", "CITY=field3"}));
    EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "CITY=Field3"));
    EXPECT_EQ(Plan.Columns[1].Fate, jcMissing);
    const auto Found =
        RefusalOf([&] { MakePlan(*File.Source, Table, ByLines({"ID=Field1", "CITY=Field4"})); });
    EXPECT_EQ(Found.Kind, jfColumnMissing) << "no row has it";
    EXPECT_EQ(Found.Value, "Field4");
    EXPECT_EQ(Found.Number, 1);
    EXPECT_EQ(Found.Count, 2);
}

TEST_F(KvJobPlan, AColumnIsFoundByWhatTheHeaderCallsIt)
{
    TJobTestSource File("orders.csv", "Nr, \"Ort\" ,Field1\n1,Rom,x\n");
    const auto Plan = MakePlan(File.Look({.FindTitles = false}), Table,
                               ByLines({"ID=nr", "CITY= 'Ort'", "NOTE=Field1"}));
    EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "CITY=Field2", "NOTE=Field1"));
    EXPECT_TRUE(Plan.Columns[0].ByTitle);
    EXPECT_FALSE(Plan.Columns[2].ByTitle) << "the name of a column comes first";
}

TEST_F(KvJobPlan, AMisspeltColumnIsNoConstant)
{
    TJobTestSource File("orders.csv", "Nr,Ort\n1,Rom\n");
    const auto Refused = [&](const std::string& Line) {
        return RefusalOf([&] {
            MakePlan(File.Look({.FindTitles = false}), Table, ByLines({"ID=Nr", Line}));
        });
    };
    EXPECT_EQ(Refused("CITY=Town").Kind, jfNoSuchColumn);
    EXPECT_THAT(Refused("CITY=Town").Names, ElementsAre("Nr", "Ort"));
    EXPECT_EQ(Refused("CITY=batch2").Kind, jfNoSuchColumn) << "nobody means the second value by it";
    TJobTestSource Old("old.dbf", TDbaseBuilder().Field("CITY", 'C', 5).Record({"Rom"}).Build());
    EXPECT_EQ(RefusalOf([&] { MakePlan(Old.Look(), Table, ByLines({"CITY=CITI"})); }).Kind, jfNoSuchColumn);
}

TEST_F(KvJobPlan, AConstantComesFirstHoweverColumnsAreJoined)
{
    TJobTestSource File("orders.csv", "ID,NOTE\n1,x\n");
    for (const auto Mapping : {jmByName, jmByPosition}) {
        TJobPlanSettings Settings{.Mapping = Mapping, .Constants = {"note=June", "CITY=Rom"}};
        const auto Plan = MakePlan(File.Look(), Table, Settings);
        EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "NOTE=June", "CITY=Rom"));
        EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcFieldSet, jcConstant, jcConstant));
    }
    auto Settings = ByLines({"ID=Field1", "NOTE=Field2"});
    Settings.Constants = {"NOTE=x"};
    EXPECT_EQ(RefusalOf([&] { MakePlan(*File.Source, Table, Settings); }).Kind, jfFieldTwice);
}

TEST_F(KvJobPlan, AConstantThatTheComponentWouldReadOtherwiseIsRefused)
{
    TJobTestSource File("orders.csv", "ID,CITY\n1,Rom\n");
    TJobTestSource Page("page.html", "<html><table><tr><td>ID</td></tr><tr><td>1</td></tr></table></html>");
    const auto Refused = [&](TJobTestSource& Source, const std::string& Line) {
        return RefusalOf([&] {
                   MakePlan(Source.Look(), Table, {.Constants = {Line}});
               }).Kind;
    };
    for (const std::string Text : {"batch2", "May 2024", "Field1", "Fields", "May,"})
        EXPECT_EQ(Refused(File, "NOTE=" + Text), jfNoConstant) << Text;
    EXPECT_EQ(Refused(Page, "NOTE=May"), jfNoConstant);
    EXPECT_EQ(Refused(File, "NOTE="), jfBadMapLine);
    EXPECT_EQ(Refused(File, "NOET=May"), jfNoSuchField);
}

TEST_F(KvJobPlan, LinesThatTakeNothingAreRefused)
{
    TJobTestSource Packet("packet.xml", "<DATAPACKET><ROWDATA><ROW A=\"7\"/></ROWDATA></DATAPACKET>");
    EXPECT_EQ(RefusalOf([&] { MakePlan(Packet.Look(), Table, ByLines({"ID=B", "CITY=C"})); }).Kind,
              jfNoColumns);
    EXPECT_EQ(MakePlan(*Packet.Source, Table, ByLines({"ID=A", "CITY=C"})).Columns[1].Fate, jcMissing);
}

TEST_F(KvJobPlan, AColumnMayBeWrittenInAnyCase)
{
    TJobTestSource File("orders.csv", "1,2\n");
    const auto Plan =
        MakePlan(File.Look({.FindTitles = false}), Table, ByLines({"CITY=FIELD1", "ID=field2"}));
    EXPECT_THAT(Plan.Lines, ElementsAre("CITY=Field1", "ID=Field2"));
    EXPECT_EQ(Plan.Columns.size(), 2);
}

TEST_F(KvJobPlan, ColumnsThatDifferInCaseOnlyAreToldApart)
{
    TJobTestSource File("orders.xml",
                        "<DATAPACKET><ROWDATA><ROW town=\"1\" Town=\"2\"/></ROWDATA></DATAPACKET>");
    const auto Plan = MakePlan(File.Look(), Table, ByLines({"CITY=Town", "NOTE=town"}));
    EXPECT_THAT(Plan.Lines, ElementsAre("CITY=Town", "NOTE=town"));
}

TEST_F(KvJobPlan, ANameThatCanBeNoColumnIsRefused)
{
    TJobTestSource File("page.html", "<html><table><tr><td>1</td></tr></table></html>");
    const auto Found =
        RefusalOf([&] { MakePlan(File.Look({.FindTitles = false}), Table, ByLines({"CITY=Town"})); });
    EXPECT_EQ(Found.Kind, jfNoSuchColumn);
    EXPECT_EQ(Found.Value, "Town");
    EXPECT_EQ(Found.Was, "html");
}

TEST_F(KvJobPlan, LinesThatArePairsOfNothingAreRefused)
{
    for (const std::string Line : {"ID", "ID=", "=Field1", "", " = "}) {
        const auto Found = RefusalOf([&] { SplitMapLine(Line); });
        EXPECT_EQ(Found.Kind, jfBadMapLine);
        EXPECT_EQ(Found.Value, Line);
    }
}

TEST_F(KvJobPlan, LinesNameFieldsOfTheTableAndEachOnce)
{
    TJobTestSource File("orders.csv", "1,2\n");
    const auto Refused = [&](std::vector<std::string> Lines) {
        return RefusalOf(
            [&] { MakePlan(File.Look({.FindTitles = false}), Table, ByLines(std::move(Lines))); });
    };
    EXPECT_EQ(Refused({"TOTAL=Field1"}).Kind, jfFieldReadOnly);
    EXPECT_EQ(Refused({"TOTAL=Field1"}).Name, "TOTAL=Field1");
    EXPECT_EQ(Refused({"ID=Field1", "id=Field2"}).Kind, jfFieldTwice);
    EXPECT_EQ(Refused({"NR=Field1"}).Kind, jfNoSuchField);
    EXPECT_EQ(Refused({"NR=Field1"}).Value, "NR");
}

TEST_F(KvJobPlan, FieldsThatMappingLinesCannotNameAreLeftOut)
{
    TMemoryDataSet Odd;
    Odd.SetFieldDefs({{.Name = "D"}, {.Name = "D=E"}});
    Odd.Open();
    TJobTestSource File("orders.csv", "D=E,D\n");
    const auto Plan = MakePlan(File.Look(), Odd, {});
    EXPECT_THAT(Plan.Lines, ElementsAre("D=Field2"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcUnnameable, jcMapped)) << "a line would name the other field";
}

TEST_F(KvJobPlan, ANameWithAnEqualSignIsOneLikeOthers)
{
    TMemoryDataSet Odd;
    Odd.SetFieldDefs({{.Name = "A=B"}, {.Name = "D"}});
    Odd.Open();
    TJobTestSource File("orders.csv", "A=B,D=x\n1,2\n");
    EXPECT_THAT(MakePlan(File.Look(), Odd, {}).Lines, ElementsAre("A=B=Field1"));
    EXPECT_THAT(MakePlan(File.Look(), Odd, ByLines({"A=B=D=x", "D=A=B"})).Lines,
                ElementsAre("A=B=Field2", "D=Field1"));
    EXPECT_EQ(RefusalOf([&] { MakePlan(File.Look(), Odd, ByLines({"A=Field1"})); }).Kind, jfNoSuchField);
}

TEST_F(KvJobPlan, ATitleThatIsNoUtf8FindsItsField)
{
    TMemoryDataSet Sizes;
    Sizes.SetFieldDefs({{.Name = "ID"}, {.Name = "Größe"}});
    Sizes.Open();
    TJobTestSource File("sizes.csv", "ID,Gr\xF6\xDF" "e\n3,a\n");
    const auto& Source = File.Look();
    EXPECT_THAT(MakePlan(Source, Sizes, {}).Lines, ElementsAre("ID=Field1", "Größe=Field2"));
    ASSERT_EQ(Source.Findings().size(), 1);
    EXPECT_EQ(Source.Findings()[0].Kind, jfLegacyText);
    EXPECT_EQ(Source.Findings()[0].Place, "line 1");
}

TEST_F(KvJobPlan, AColumnWithBlanksAtTheEndsOfItsNameIsFoundByIt)
{
    TJobTestSource File("padded.dbf", TDbaseBuilder().Field("CITY  ", 'C', 5).Record({"Rom"}).Build());
    EXPECT_THAT(MakePlan(File.Look(), Table, {}).Lines, ElementsAre("CITY=CITY"));
}

TEST_F(KvJobPlan, KeysAreSpelledAsTheFieldsAreAndNamedOnce)
{
    TJobTestSource File("orders.csv", "ID,CITY\n");
    const auto WithKeys = [&](std::vector<std::string> Keys) {
        return MakePlan(File.Look(), Table, {.Mode = imUpdate, .Keys = std::move(Keys)});
    };
    EXPECT_THAT(WithKeys({"city", "id", "CITY"}).Keys, ElementsAre("CITY", "ID"));
    const auto Unknown = RefusalOf([&] { WithKeys({"NR"}); });
    EXPECT_EQ(Unknown.Kind, jfNoSuchField);
    EXPECT_EQ(Unknown.Name, "") << "of the keys, not of a line";
    const auto Unmapped = RefusalOf([&] { WithKeys({"NOTE"}); });
    EXPECT_EQ(Unmapped.Kind, jfKeyNotMapped);
    EXPECT_EQ(Unmapped.Value, "NOTE");
}

TEST_F(KvJobPlan, KeysAreOfNoUseWhereRecordsAreOnlyAdded)
{
    TJobTestSource File("orders.csv", "ID,CITY\n");
    EXPECT_THAT(MakePlan(File.Look(), Table, {.Keys = {"ID"}}).Keys, IsEmpty());
}

TEST_F(KvJobPlan, WithoutATableFieldsAreBelieved)
{
    TJobTestSource File("orders.csv", "1,2\n");
    auto Settings = ByLines({"ID=Field1"});
    Settings.Constants = {"CITY=Town"};
    Settings.Mode = imUpdate;
    Settings.Keys = {"id"};
    const auto Plan = MakePlanAlone(File.Look({.FindTitles = false}), Settings);
    EXPECT_THAT(Plan.Lines, ElementsAre("ID=Field1", "CITY=Town"));
    EXPECT_THAT(FatesOf(Plan), ElementsAre(jcMapped, jcConstant));
    Settings.Keys = {"NOTE"};
    EXPECT_EQ(RefusalOf([&] { MakePlanAlone(*File.Source, Settings); }).Kind, jfKeyNotMapped);
}

TEST_F(KvJobPlan, TheComponentGetsMappingsKeysAndMode)
{
    TJobTestSource File("orders.csv", "ID,CITY\n");
    auto& Component = File.Look().Component();
    Component.Mappings().Add("OLD=Field9");
    TakePlan(Component, {.Lines = {"ID=Field1"}, .Keys = {"ID", "CITY"}}, imDelete);
    EXPECT_EQ(Component.Mappings().Text(), "ID=Field1\r\n");
    EXPECT_EQ(Component.DatasetKeys, "ID;CITY");
    EXPECT_EQ(Component.Mode, imDelete);
}

TEST_F(KvJobPlan, KnowsAHeaderByItsNames)
{
    EXPECT_TRUE(LooksLikeHeader({"id", " City ", "x"}, Table));
    EXPECT_FALSE(LooksLikeHeader({"1", "City"}, Table));
    EXPECT_FALSE(LooksLikeHeader({}, Table));
}

} // namespace

} // namespace kv
