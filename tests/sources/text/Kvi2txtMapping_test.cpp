// Automatic mapping of text files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvTextImport.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

TEST(Kvi2txtMapping, WithoutAHeaderMapsByPosition)
{
    TTextImport Import("x,y,z\r\n");
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field2", "C=Field3"));
}

TEST(Kvi2txtMapping, WithAHeaderMapsByName)
{
    TTextImport Import("c,\"a\",Other,B\r\n1,2,3,4\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field2", "B=Field4", "C=Field1"));
}

TEST(Kvi2txtMapping, AFieldThatTheHeaderDoesNotNameGetsNoLine)
{
    TTextImport Import("B,,x\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("B=Field1"));
}

TEST(Kvi2txtMapping, OfTwoColumnsWithAFieldsNameTakesTheFirst)
{
    TTextImport Import("A,a\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1"));
}

TEST(Kvi2txtMapping, TheNameBeforeATrailingDelimiterHasThatDelimiter)
{
    TTextImport Import("A,B,\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1"));
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field2"));
}

TEST(Kvi2txtMapping, ReadsNamesByTheExtensionsToo)
{
    TTextImport Import("\xEF\xBB\xBF" "A,\"He said \"\"B\"\"\"\r\n");
    Import.SetFields({{.Name = "A"}, {.Name = "He said \"B\""}});
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), IsEmpty());
    Import.Extensions = {xtDoubledQualifiers, xtByteOrderMark};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "He said \"B\"=Field2"));
}

TEST(Kvi2txtMapping, AHeaderOver9999CharactersIsRefused)
{
    TTextImport Import(std::string(10000, 'A') + "\r\n1\r\n");
    Import.RowFirst = 2;
    Import.Mappings().Clear();
    EXPECT_EQ(Import.RunAndFail(), "Line 1 of FILE is longer than 9999 characters");
}

TEST(Kvi2txtMapping, AHeaderMayBeLongerThanWhatIsReadAtFirst)
{
    TTextImport Import("A,\"" + std::string(200000, 'x') + "\",B\r\n1,2,3\r\n");
    Import.RowFirst = 2;
    Import.Extensions = {xtDoubledQualifiers, xtLongLines};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field3"));
}

TEST(Kvi2txtMapping, FixedWithoutAHeaderMapsByTheWidthsOfTheFields)
{
    TTextImport Import("\r\n");
    Import.Fixed = true;
    Import.SetFields({{.Name = "A", .Size = 10}, {.Name = "B", .DataType = ftInteger},
                      {.Name = "C", .Size = 1}});
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Text0-10", "B=Text12-23", "C=Text25-26"));
    Import.SetFieldDelimiter(fdNone);
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Text0-10", "B=Text11-22", "C=Text23-24"));
}

TEST(Kvi2txtMapping, TheFirstFixedColumnImportsItsOwnName)
{
    TTextImport Import("abcdefghij 42          7\r\n");
    Import.Fixed = true;
    Import.SetFieldDelimiter(fdNone);
    Import.SetFields({{.Name = "A", .Size = 10}, {.Name = "B", .DataType = ftInteger}});
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(), ElementsAre("Text0-10|42"));
}

TEST(Kvi2txtMapping, AFixedHeaderMapsTheOneByteAtTheBreak)
{
    // Breaks at 2, before the delimiter, and at 6. The second name is looked for between 2 and 6.
    TTextImport Import("ID,BCDE\r\n");
    Import.Fixed = true;
    Import.RowFirst = 2;
    Import.SetFields({{.Name = "ID", .Size = 2}, {.Name = "D,BCD", .Size = 2}});
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("ID=Text2-2", "D,BCD=Text6-6"));
}

TEST(Kvi2txtMapping, TheSearchInAFixedHeaderGoesOnWhereTheLastOneLeftIt)
{
    // Breaks at 2 and 5. "ID" leaves the position at 2, where the first text for "D" is the byte at 2.
    TTextImport Import("ID,XYZ\r\n");
    Import.Fixed = true;
    Import.RowFirst = 2;
    Import.SetFields({{.Name = "ID", .Size = 2}, {.Name = "D", .Size = 1}});
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("ID=Text2-2", "D=Text2-2"));
}

TEST(Kvi2txtMapping, AMissingFileFailsTheRun)
{
    TTextImport Import("");
    Import.SourceFileName = "/no/such/file";
    Import.Mappings().Clear();
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "Cannot open file \"/no/such/file\": No such file or directory");
}

TEST(Kvi2txtMapping, AddsToTheLinesThatAreThere)
{
    TTextImport Import("x\r\n");
    Import.DetectedMappings();
    Import.DetectAutoMapping();
    EXPECT_EQ(Import.Mappings().Count(), 6);
}

TEST(Kvi2txtMapping, AnImportWithoutMappingsFindsThemForTheRun)
{
    TTextImport Import("C,A,B\r\n1,2,3\r\n");
    Import.RowFirst = 2;
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(), ElementsAre("2|3|1"));
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

} // namespace kv
