#include "KvMdbFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvJetBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// A database that is open as long as the object lives.
class TOpenFile
{
public:
    explicit TOpenFile(const TJetBuilder& Builder) : File(Folder.Write("shop.mdb", Builder.Build())) {}
    ~TOpenFile() { SetAnsiCodePage("UTF-8"); }
    const TMdbFile* operator->() const { return &File; }

private:
    const TTempFolder Folder;
    const TMdbFile File;
};

template <class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "";
}

std::string MessageOfTable(const TJetBuilder& Builder, std::string_view Name)
{
    return MessageOf([&] { TOpenFile(Builder)->Table(Name); });
}

constexpr int Linked = 6, LinkedThroughOdbc = 4, Query = 5;

TJetBuilder Shop(unsigned Version = TJetBuilder::Jet4)
{
    TJetBuilder Builder(Version);
    Builder.Table(u"Orders").Field(u"ID", afLong);
    Builder.Table(u"Hidden", 1, 2).Field(u"ID", afLong);
    return Builder;
}

std::vector<std::string> NamesOf(const TJetBuilder& Builder)
{
    std::vector<std::string> Names;
    const TOpenFile File(Builder);
    for (const auto* const Object : File->Objects())
        Names.push_back(std::string(Object->object_name) + (TMdbFile::IsSystem(*Object) ? " (system)" : ""));
    return Names;
}

TEST(KvMdbFile, ListsTheTablesOfEveryVersion)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4, TJetBuilder::Ace12})
        EXPECT_THAT(NamesOf(Shop(Version)), ElementsAre("MSysObjects (system)", "Orders", "Hidden (system)"))
            << Version;
}

TEST(KvMdbFile, ReadsADatabaseThatIsEncoded)
{
    EXPECT_THAT(NamesOf(Shop().Encoded(0x12345678)),
                ElementsAre("MSysObjects (system)", "Orders", "Hidden (system)"));
}

TEST(KvMdbFile, NamesMayHaveAnyCharacters)
{
    const auto Names = {u"Käse", u"漢字表", u"a]b [c]", u"50% 'off' \"now\"", u"--help", u"a/b\\c;d"};
    TJetBuilder Builder;
    for (const auto* const Name : Names)
        Builder.Table(Name).Field(u"ID", afLong);
    EXPECT_THAT(NamesOf(Builder),
                ElementsAre("MSysObjects (system)", "Käse", "漢字表", "a]b [c]", "50% 'off' \"now\"",
                            "--help", "a/b\\c;d"));
    EXPECT_STREQ(TOpenFile(Builder)->Table("漢字表").object_name, "漢字表");
    EXPECT_STREQ(TOpenFile(Builder)->Table("a]B [C]").object_name, "a]b [c]");
}

TEST(KvMdbFile, NamesOfJet3AreTextOfItsCodePage)
{
    TJetBuilder Builder(TJetBuilder::Jet3);
    Builder.CodePage(1251).Table(u"\xC7\xE0\xEA\xE0\xE7\xFB").Field(u"ID", afLong);
    EXPECT_THAT(NamesOf(Builder), ElementsAre("MSysObjects (system)", "Заказы"));
}

TEST(KvMdbFile, FindsATableByItsNameInAnyCase)
{
    EXPECT_STREQ(TOpenFile(Shop())->Table("ORDERS").object_name, "Orders");
    auto Builder = Shop();
    Builder.Table(u"ORDERS").Field(u"ID", afLong);
    EXPECT_STREQ(TOpenFile(Builder)->Table("ORDERS").object_name, "ORDERS");
    EXPECT_STREQ(TOpenFile(Builder)->Table("Orders").object_name, "Orders");
}

TEST(KvMdbFile, AnUnknownTableIsAnError)
{
    auto Builder = Shop();
    Builder.Table(u"Totals", Query);
    EXPECT_EQ(MessageOfTable(Builder, "Customers"), "has no table Customers");
    EXPECT_EQ(MessageOfTable(Builder, "Totals"), "has no table Totals") << "a query is none";
}

TEST(KvMdbFile, ALinkIsNoTableOfThisDatabase)
{
    auto Builder = Shop();
    Builder.Table(u"There", Linked).Table(u"Far", LinkedThroughOdbc);
    EXPECT_EQ(MessageOfTable(Builder, "There"),
              "its table There is a link to another database, which has to be opened itself");
    EXPECT_EQ(MessageOfTable(Builder, "Far"),
              "its table Far is a link to another database, which has to be opened itself");
}

TEST(KvMdbFile, ALinkNamesTheFileThatHasTheTable)
{
    for (const unsigned Version : {TJetBuilder::Jet3, TJetBuilder::Jet4}) {
        TJetBuilder Builder(Version);
        Builder.Table(u"Orders").Field(u"Id", afLong);
        Builder.Table(u"Other", Linked).LinksTo(u"C:\\other.mdb", u"Elsewhere");
        Builder.Table(u"There", Linked).LinksTo(u"D:\\data\\shop.mdb", u"Orders");
        EXPECT_EQ(MessageOfTable(Builder, "There"),
                  "its table There is a link to table Orders of D:\\data\\shop.mdb, which has to be opened "
                  "itself");
    }
}

TEST(KvMdbFile, ACatalogThatIsALinkIsNotFollowed)
{
    auto Builder = Shop();
    Builder.Table(u"MSysObjects", Linked);
    EXPECT_EQ(MessageOfTable(Builder, "MSysObjects"),
              "its table MSysObjects is a link to another database, which has to be opened itself");
}

TEST(KvMdbFile, AFileThatIsCutOffIsCalledSo)
{
    const TTempFolder Folder;
    const auto Whole = Shop().Build();
    EXPECT_EQ(CutNote(Folder.Write("a.mdb", Whole)), "");
    EXPECT_EQ(CutNote(Folder.Write("a.mdb", Whole.substr(0, 8192 + 5))),
              "; the file is cut off: its 8197 bytes end within page 2");
    EXPECT_EQ(CutNote(Folder.Write("a.mdb", TJetBuilder(TJetBuilder::Jet3).Build().substr(0, 2048 + 7))),
              "; the file is cut off: its 2055 bytes end within page 1");
    EXPECT_EQ(CutNote(Folder / "none.mdb"), "");
}

TEST(KvMdbFile, ATableWithoutANameIsDamage)
{
    EXPECT_EQ(MessageOf([] { TOpenFile(Shop().Table(u""))->Objects(); }),
              "its list of tables cannot be read; it is damaged or encrypted");
}

TEST(KvMdbFile, AListOfTablesThatIsNoneIsDamage)
{
    auto Bytes = Shop().Build();
    Bytes.replace(2 * 4096, 4096, std::string(4096, '\x5A'));
    const TTempFolder Folder;
    EXPECT_EQ(MessageOf([&] { TMdbFile(Folder.Write("a.mdb", Bytes)); }),
              "its list of tables cannot be read; it is damaged or encrypted");
}

TEST(KvMdbFile, ACodePageThatIsNotKnownIsAnError)
{
    EXPECT_EQ(MessageOf([] { TOpenFile(Shop(TJetBuilder::Jet3).CodePage(9999)); }),
              "Unknown code page '9999'");
    EXPECT_EQ(MessageOf([] { TOpenFile(Shop(TJetBuilder::Jet3).CodePage(0)); }), "")
        << "where there is none it is 1252";
}

} // namespace

} // namespace kv
