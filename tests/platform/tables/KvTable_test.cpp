#include "KvTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "KvDbaseBuilder.h"
#include "KvException.h"
#include "KvParadoxBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string MessageOf(const std::function<void()>& Act)
{
    try {
        Act();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "nothing was raised";
}

TKvErrorFacts FactsOf(const std::function<void()>& Act)
{
    try {
        Act();
    }
    catch (const Exception& Error) {
        return Error.Facts;
    }
    return {.Place = "nothing was raised"};
}

struct KvTable : testing::Test
{
    KvTable()
    {
        Table.TableName = Folder.Write("people.dbf", Dbase());
        Folder.Write("people.db", Paradox());
    }

    static std::string Dbase()
    {
        return TDbaseBuilder()
            .Field("NAME", 'C', 5)
            .Field("QTY", 'N', 3)
            .Record({"Ada", "  3"})
            .Deleted({"Bob", "  4"})
            .Record({"Cy", ""})
            .Record({"Dee", "  5"})
            .Build();
    }
    static std::string Paradox() { return TParadoxBuilder().Field("WHO", 'A', 5).Record({"Eve"}).Build(); }

    std::vector<std::string> Names()
    {
        std::vector<std::string> Found;
        for (Table.First(); !Table.Eof(); Table.Next())
            Found.push_back(Table.Fields(0).AsString());
        return Found;
    }

    const TTempFolder Folder;
    TTable Table;
};

} // namespace

TEST_F(KvTable, ReadsTheRecordsOfItsFile)
{
    Table.Open();
    EXPECT_EQ(Table.RecordCount(), 3);
    EXPECT_THAT(Names(), ElementsAre("Ada", "Cy", "Dee"));
    EXPECT_THAT(Names(), ElementsAre("Ada", "Cy", "Dee")) << "First begins anew";
}

TEST_F(KvTable, RecordsKeepTheNumbersThatTheyHaveInTheFile)
{
    Table.Open();
    std::vector<int> Numbers;
    for (; !Table.Eof(); Table.Next())
        Numbers.push_back(Table.RecNo());
    EXPECT_THAT(Numbers, ElementsAre(1, 3, 4)) << "the second is deleted";
    EXPECT_EQ(Table.RecNo(), 0);
}

TEST_F(KvTable, KnowsItsFieldsWhileItIsOpen)
{
    EXPECT_EQ(Table.FieldCount(), 0);
    EXPECT_EQ(Table.FindField("NAME"), nullptr);
    Table.Open();
    ASSERT_EQ(Table.FieldCount(), 2);
    EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
    EXPECT_EQ(Table.Fields(0).DataType(), ftString);
    EXPECT_EQ(Table.FindField("qty"), &Table.Fields(1));
    Table.Close();
    EXPECT_EQ(Table.FieldCount(), 0);
}

TEST_F(KvTable, ValuesHaveTheKindsOfTheirFields)
{
    Table.Open();
    EXPECT_EQ(Table.Fields(1).Value(), TVariant(3));
    Table.Next();
    EXPECT_TRUE(Table.Fields(1).IsNull());
    const auto Values = Table.FieldValues("QTY;NAME");
    EXPECT_TRUE(Values[0].IsNull());
    EXPECT_EQ(Values[1], TVariant("Cy"));
}

TEST_F(KvTable, TheExtensionTellsTheDefaultType)
{
    Table.Open();
    EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
    Table.Close();
    Table.TableName = Folder / "people.db";
    Table.Open();
    EXPECT_THAT(Names(), ElementsAre("Eve"));
}

TEST_F(KvTable, OfAnotherExtensionTheFirstBytesTellTheDefaultType)
{
    Table.TableName = Folder.Write("a.old", Dbase());
    Table.Open();
    EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
    Table.Close();
    Table.TableName = Folder.Write("b.old", Paradox());
    Table.Open();
    EXPECT_EQ(Table.Fields(0).FieldName(), "WHO");
    Table.Close();
    Table.TableName = Folder.Write("c.old", "NAME;QTY\n");
    EXPECT_EQ(MessageOf([&] { Table.Open(); }),
              "File \"" + Table.TableName + "\" is neither a Paradox nor a dBase table");
    EXPECT_FALSE(Table.Active());
}

TEST_F(KvTable, TheTypeDecidesWhateverTheExtension)
{
    Table.TableName = Folder.Write("a.db", Dbase());
    for (const auto Type : {ttDBase, ttFoxPro}) {
        Table.TableType = Type;
        Table.Open();
        EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
        Table.Close();
    }
    Table.TableType = ttParadox;
    EXPECT_THAT(MessageOf([&] { Table.Open(); }), HasSubstr("is no Paradox table"));
    Table.TableType = ttASCII;
    EXPECT_EQ(MessageOf([&] { Table.Open(); }),
              "File \"" + Table.TableName + "\" cannot be opened as a table of text");
}

TEST_F(KvTable, TypesHaveTheirNumbers)
{
    EXPECT_EQ(ttDefault, 0);
    EXPECT_EQ(ttParadox, 1);
    EXPECT_EQ(ttDBase, 2);
    EXPECT_EQ(ttFoxPro, 3);
    EXPECT_EQ(ttASCII, 4);
}

TEST_F(KvTable, ANameWithoutAnExtensionGetsThatOfItsType)
{
    Table.TableName = Folder / "people";
    Table.TableType = ttDBase;
    Table.Open();
    EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
    Table.Close();
    Table.TableType = ttParadox;
    Table.Open();
    EXPECT_EQ(Table.Fields(0).FieldName(), "WHO");
    Table.Close();
    Folder.Write("people", Dbase());
    EXPECT_THAT(MessageOf([&] { Table.Open(); }), HasSubstr("is no Paradox table"))
        << "a file of that name goes first";
}

TEST_F(KvTable, AnExtensionThatANameLacksMayBeInAnyCase)
{
    Folder.Write("STOCK.DBF", Dbase());
    Table.TableType = ttDBase;
    for (const char* const Name : {"STOCK", "stock"}) {
        Table.TableName = Folder / Name;
        Table.Open();
        EXPECT_EQ(Table.Fields(0).FieldName(), "NAME");
        Table.Close();
    }
    Table.TableName = Folder / "none";
    EXPECT_EQ(MessageOf([&] { Table.Open(); }),
              "Cannot open file \"" + (Folder / "none.dbf") + "\": No such file or directory");
}

TEST_F(KvTable, AFileThatMayOnlyBeReadIsRead)
{
    for (const char* const Name : {"people.dbf", "people.db"}) {
        Table.TableName = Folder / Name;
        std::filesystem::permissions(Table.TableName, std::filesystem::perms::owner_read);
        Table.Open();
        EXPECT_FALSE(Names().empty());
        Table.Close();
    }
}

TEST_F(KvTable, AMissingFileIsNamed)
{
    for (const auto Type : {ttDefault, ttDBase, ttParadox}) {
        Table.TableType = Type;
        Table.TableName = Folder / "none.x";
        EXPECT_EQ(MessageOf([&] { Table.Open(); }),
                  "Cannot open file \"" + Table.TableName + "\": No such file or directory");
    }
    Table.TableName = "";
    EXPECT_EQ(MessageOf([&] { Table.Open(); }), "TTable: TableName is missing");
}

TEST_F(KvTable, TextsStayAsTheyAreWithoutTransliterate)
{
    Table.TableName =
        Folder.Write("a.dbf", TDbaseBuilder().Language(0x65).Field("A", 'C', 3).Record({"\x8F"}).Build());
    Table.Open();
    EXPECT_EQ(Table.Fields(0).AsString(), "П");
    Table.Close();
    Table.Transliterate = false;
    Table.Open();
    EXPECT_EQ(Table.Fields(0).AsString(), "\x8F");
}

TEST_F(KvTable, RecordsAreFoundByTheirKeys)
{
    Table.Open();
    EXPECT_TRUE(Table.Locate("QTY", 5));
    EXPECT_EQ(Table.Fields(0).AsString(), "Dee");
    auto Keys = TVariant::Array(0, 1);
    Keys[0] = "Ada";
    Keys[1] = 3;
    EXPECT_TRUE(Table.Locate("NAME;QTY", Keys));
    EXPECT_TRUE(Table.Locate("NAME", "d", {loCaseInsensitive, loPartialKey}));
    EXPECT_EQ(Table.Fields(0).AsString(), "Dee");
    EXPECT_TRUE(Table.Locate("QTY", Null));
    EXPECT_EQ(Table.Fields(0).AsString(), "Cy");
    EXPECT_FALSE(Table.Locate("NAME", "Bob")) << "deleted";
    EXPECT_EQ(Table.Fields(0).AsString(), "Cy") << "the cursor stays";
}

TEST_F(KvTable, RecordsCannotBeChanged)
{
    Table.Open();
    const auto Refused = Table.TableName + ": the table cannot be changed";
    Table.Append();
    EXPECT_EQ(MessageOf([&] { Table.Fields(0).SetValue("x"); }), "Field 'NAME' cannot be modified");
    EXPECT_EQ(MessageOf([&] { Table.Post(); }), Refused);
    Table.Cancel();
    EXPECT_EQ(MessageOf([&] { Table.Delete(); }), Refused);
}

TEST_F(KvTable, PublishesWhatItIsOpenedFrom)
{
    SetPropValue(Table, "TableType", "ttDBase");
    EXPECT_EQ(Table.TableType, ttDBase);
    SetPropValue(Table, "TableName", "x.dbf");
    EXPECT_EQ(Table.TableName, "x.dbf");
    SetPropValue(Table, "SessionName", "Other");
    EXPECT_EQ(Table.SessionName, "Other");
    SetPropValue(Table, "Transliterate", false);
    EXPECT_FALSE(Table.Transliterate);
}

TEST_F(KvTable, TheDefaultSessionHasAName)
{
    EXPECT_EQ(Session().SessionName, "Default");
    EXPECT_EQ(&Session(), &Session());
}

// --- Errors as facts ---------------------------------------------------------------------------------

TEST_F(KvTable, AValueThatCannotBeReadIsKnownByRecordAndField)
{
    const auto Bytes = TDbaseBuilder().Field("QTY", 'N', 3).Record({"1"}).Record({"1*1"}).Build();
    Table.TableName = Folder.Write("bad.dbf", Bytes);
    Table.Open();
    Table.Next();
    const auto Facts = FactsOf([this] { Table.Fields(0).Value(); });
    EXPECT_EQ(Facts.FileName, Table.TableName);
    EXPECT_EQ(Facts.Place, "record 2");
    EXPECT_EQ(Facts.Field, "QTY");
    EXPECT_EQ(Facts.Value, "1*1");
    EXPECT_EQ(Facts.Rule, erFormat);
}

TEST_F(KvTable, DamageBehindTheLastRecordThatIsWantedDoesNotMatter)
{
    auto Numbers = TDbaseBuilder().Field("QTY", 'N', 3);
    const auto Dbase = Numbers.Record({"1"}).Deleted({"2"}).Record({"3"}).Build();
    auto Shorts = TParadoxBuilder().Field("QTY", 'S');
    auto Paradox = Shorts.Record({ParadoxShort(1)}).Record({ParadoxShort(2)}).Build();
    Paradox[6] = 9;                                 // the header counts more of them
    for (const auto& [Name, Bytes, Whole] :
         {std::tuple{"cut.dbf", Dbase.substr(0, Dbase.size() - 4), 2}, std::tuple{"cut.db", Paradox, 2}}) {
        Table.Close();
        Table.TableName = Folder.Write(Name, Bytes);
        Table.LastRecord = Whole;
        Table.Open();
        int Count = 0;
        for (Table.First(); !Table.Eof(); Table.Next())
            Count += Table.Fields(0).Value().HasValue();
        EXPECT_EQ(Count, Name == std::string("cut.db") ? 2 : 1) << Name;
        ASSERT_EQ(Table.Remarks().size(), 1U);
        EXPECT_EQ(Table.Remarks()[0].Kind, trRecordsMissing);
        EXPECT_EQ(Table.Remarks()[0].Count, 2);
        Table.LastRecord = Whole + 1;
        Table.First();
        EXPECT_THROW(while (!Table.Eof()) Table.Next(), EFormatError) << Name;
        Table.LastRecord = 1;
        Table.First();
        Table.Next();
        EXPECT_TRUE(Table.Eof());
    }
    Table.Close();
    EXPECT_TRUE(Table.Remarks().empty());
}

TEST_F(KvTable, AFileThatEndsEarlyIsKnownByTheRecordThatIsMissing)
{
    const auto Whole = TDbaseBuilder().Field("QTY", 'N', 3).Record({"1"}).Record({"2"}).Build();
    Table.TableName = Folder.Write("cut.dbf", Whole.substr(0, Whole.size() - 4));
    Table.Open();
    const auto Facts = FactsOf([this] { Table.Next(); });
    EXPECT_EQ(Facts.FileName, Table.TableName);
    EXPECT_EQ(Facts.Place, "record 2");
    EXPECT_EQ(Facts.Rule, erFormat);
    EXPECT_GT(Facts.Offset, 0);
    EXPECT_LE(Facts.Offset, static_cast<std::int64_t>(Whole.size()));
}

TEST_F(KvTable, AFileThatIsNoTableIsKnownByItsName)
{
    for (const auto* const Name : {"none.dbf", "none.db", "none"}) {
        Table.TableName = Folder.Write(Name, "no table");
        const auto Facts = FactsOf([this] { Table.Open(); });
        EXPECT_EQ(Facts.FileName, Table.TableName);
        EXPECT_EQ(Facts.Rule, erFormat);
    }
}

} // namespace kv
