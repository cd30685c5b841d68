#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {

namespace {

using testing::HasSubstr;

class KvPreview : public testing::Test
{
protected:
    TProgramResult Preview(std::string_view Text, TArguments Arguments = {},
                           const std::string& Name = "orders.csv") const
    {
        Arguments.insert(Arguments.begin(), {"preview", Folder.Write(Name, Text)});
        return RunKvImport(Folder, Arguments);
    }

    const TTempFolder Folder;
};

TEST_F(KvPreview, ShowsNamesAndRows)
{
    const auto Result = Preview("ID,City,Amount\n1,Köln,5.50\n12,東京,\"1,234.00\"\n,Łódź,\n");
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, "line      ID  City      Amount\n"
                          "      Field1  Field2    Field3\n"
                          "----  ------  ------  --------\n"
                          "   2       1  Köln        5.50\n"
                          "   3      12  東京    1,234.00\n"
                          "   4          Łódź\n");
}

TEST_F(KvPreview, ShowsColumnsWithoutAHeader)
{
    EXPECT_EQ(Preview("1,Rom\n2,Bern,x\n", {"--first-row", "1"}).Out, "line  Field1  Field2  Field3\n"
                                                                      "----  ------  ------  ------\n"
                                                                      "   1       1  Rom\n"
                                                                      "   2       2  Bern    x\n");
}

TEST_F(KvPreview, ShowsFixedColumns)
{
    EXPECT_EQ(Preview("1   Rom     5\n", {"--fixed", "--columns", "ID=1-4,CITY=5-12"}, "orders.txt").Out,
              "line       ID  CITY\n"
              "      Text1-4  Text5-12\n"
              "----  -------  --------\n"
              "   1        1  Rom\n");
}

TEST_F(KvPreview, WritesOutLineEndsAndControlCharacters)
{
    EXPECT_THAT(Preview("A,B\n\"x\ny\",\x1B[1m\n").Out, HasSubstr("x\\ny    \\x1B[1m\n"));
}

TEST_F(KvPreview, ShowsTextOfOtherCodePages)
{
    EXPECT_THAT(Preview("A\nK\xF6ln\n").Out, HasSubstr("Köln"));
    EXPECT_THAT(Preview("A\nK\x94ln\n", {"--charset", "msdos"}).Out, HasSubstr("Köln"));
    EXPECT_THAT(Preview("A\n\xCC\xEE\n", {"--code-page", "windows-1251"}).Out, HasSubstr("Мо"));
}

TEST_F(KvPreview, StopsAfterTheRowsAskedFor)
{
    std::string Text = "ID\n";
    for (int I = 1; I <= 30; ++I)
        Text += std::to_string(I) + "\n";
    EXPECT_THAT(Preview(Text).Out,
                HasSubstr("  21      20\nThere are more rows; --rows N shows N of them.\n"));
    EXPECT_THAT(Preview(Text, {"--rows", "2"}).Out, HasSubstr("   3       2\nThere are more rows"));
    EXPECT_THAT(Preview(Text, {"--rows", "30"}).Out, testing::EndsWith("  31      30\n"));
}

TEST_F(KvPreview, ReadsOnOnlyAsFarAsItMust)
{
    // The first value is longer than what is looked at first.
    const std::string Long(3 << 20, 'x');
    const auto Json = Preview("A,B\n\"" + Long + "\",1\n2,3\n", {"--json"}).Json();
    ASSERT_EQ(Json["rows"].size(), 2);
    EXPECT_EQ(Json["rows"][0]["values"][0].get<std::string>().size(), Long.size());
    EXPECT_EQ(Json["rows"][1]["values"], nlohmann::json::array({"2", "3"}));
}

TEST_F(KvPreview, PrintsJson)
{
    EXPECT_EQ(Preview("ID;City\n1;Rom\n2;Bern\n", {"--rows", "1", "--json"}).Json(), nlohmann::json::parse(
        R"({"source": ")" + (Folder / "orders.csv") + R"(", "columns": [{"column": "Field1", "name": "ID"},
            {"column": "Field2", "name": "City"}], "rows": [{"line": 2, "values": ["1", "Rom"]}],
            "hasMore": true, "findings": ["delimiter semicolon, as line 1 has it"], "warnings": []})"));
}

TEST_F(KvPreview, ReadsStandardInput)
{
    const auto Result = RunKvImport(Folder, {"preview", "-", "--delimiter", "comma"},
                                    Folder.Write("in", "ID\n7\n"));
    EXPECT_THAT(Result.Out, HasSubstr("   2       7\n"));
}

TEST_F(KvPreview, TellsOfAnUnclosedValue)
{
    const auto Result = Preview("A\n\"x\n");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("orders.csv begins a value that no text qualifier closes"));
}

TEST_F(KvPreview, FormatsListsWhatCanBeRead)
{
    const auto Result = RunKvImport(Folder, {"formats"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_THAT(Result.Out, testing::ContainsRegex("text +Text, delimited or of fixed width +\\.csv \\.txt"));
}

TEST_F(KvPreview, HelpAndVersionAreNoErrors)
{
    EXPECT_THAT(RunKvImport(Folder, {"--version"}).Out, testing::StartsWith("kvimport "));
    for (const auto* const Command : {"import", "preview", "formats"}) {
        const auto Result = RunKvImport(Folder, {Command, "--help"});
        EXPECT_EQ(Result.Status, 0);
        EXPECT_THAT(Result.Out, HasSubstr(std::string("Usage: kvimport ") + Command));
        EXPECT_EQ(Result.Err, "");
    }
}

} // namespace

} // namespace kv
