#include "KviSourceKinds.h"

#include "KvProperties.h"
#include "KvTable.h"
#include "Kvibase.h"

using namespace std::string_literals;

namespace kv {

namespace {

struct TBeginning
{
    std::string_view Kind;                          // empty: none of those that recognise their files
    std::string Bytes;
};

const TBeginning Beginnings[] = {
    {"html", "<!doctype HTML>"},
    {"html", "\xEF\xBB\xBF\r\n<HTML lang=de>"},
    {"", "<table><tr><td>"},                        // also a piece of anything else
    {"xml", "<DATAPACKET Version=\"2.0\">"},
    {"xml", "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<DATAPACKET>"},
    {"", "<?xml version=\"1.0\"?><html>"},
    {"", "<?xml version=\"1.0\""},
    {"xls", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"},
    {"xls", "\x09\x08\x10\x00\x00\x06"s},
    {"wks", "\0\0\x02\0\x06\x04"s},
    {"wks", "\0\0\x1A\0\0\x10"s},
    {"quattro", "\0\0\x02\0\x20\x51"s},
    {"", "\0\0\x02\0\x99\x99"s},
    {"access", "\0\1\0\0Standard Jet DB\0"s},
    {"access", "\0\1\0\0Standard ACE DB\0"s},
    {"", "\0\1\0\0Standard Jet"s},
    {"", "SQLite format 3\0\x10"s},
    {"", "ID,CITY"},
    {"", ""}};

/// The name of the kind that a file is, "none" when it is of none.
std::string_view KindFound(const std::string& FileName, std::string_view Beginning)
{
    const auto* const Kind = KindOfSource(FileName, Beginning);
    return Kind ? Kind->Name : "none";
}

TEST(KviSourceKinds, EachKindKnowsItsFilesAndNoOther)
{
    for (const auto& Beginning : Beginnings)
        for (const auto* const Kind : ImportKinds())
            EXPECT_EQ(Kind->Recognizes && Kind->Recognizes(Beginning.Bytes), Kind->Name == Beginning.Kind)
                << Kind->Name << ": " << Beginning.Bytes;
}

TEST(KviSourceKinds, AreListedInOneOrderAndFoundByNameAndOrdinal)
{
    std::string Names;
    for (const auto* const Kind : ImportKinds()) {
        Names += std::string(Kind->Name) + " ";
        EXPECT_EQ(FindImportKind(Kind->Name), Kind);
        EXPECT_EQ(FindImportKind(Kind->TableType), Kind);
    }
    EXPECT_EQ(Names, "text html xml xls wks quattro access dbase paradox ");
    EXPECT_EQ(FindImportKind("DBase")->Name, "dbase");
    EXPECT_EQ(FindImportKind("oracle"), nullptr);
    EXPECT_EQ(FindImportKind(static_cast<TTableTypeImport>(-1)), nullptr);
}

TEST(KviSourceKinds, TheContentOfAFileTellsMoreThanItsName)
{
    EXPECT_EQ(KindFound("orders.csv", "<!DOCTYPE html>"), "html");
    EXPECT_EQ(KindFound("orders.xls", "<DATAPACKET>"), "xml");
    EXPECT_EQ(KindFound("", "\0\0\x02\0\x06\x04"s), "wks");
}

TEST(KviSourceKinds, TheNameTellsWhereTheContentDoesNot)
{
    EXPECT_EQ(KindFound("ORDERS.HTM", "<table>"), "html");
    EXPECT_EQ(KindFound("orders.wk1", "damaged"), "wks");
    EXPECT_EQ(KindFound("folder.xls/orders", "ID,CITY"), "text");
    EXPECT_EQ(KindFound("orders.csv", "ID\0CITY"s), "text");
}

TEST(KviSourceKinds, WhatNeitherTellsIsTextIfItMayBe)
{
    EXPECT_EQ(KindFound("orders.unknown", "ID,CITY\r\n"), "text");
    EXPECT_EQ(KindFound("orders", ""), "text");
    EXPECT_EQ(KindFound("", "\xFF\xFEI\0D\0"s), "text");
    EXPECT_EQ(KindFound("orders", "I\0D\0"s), "none");
}

TEST(KviSourceKinds, AnSqliteDatabaseIsToldApartWhateverItsName)
{
    const auto Beginning = "SQLite format 3\0\x10"s;
    EXPECT_TRUE(IsSqliteDatabase(Beginning));
    EXPECT_FALSE(IsSqliteDatabase("SQLite format 3"));
    EXPECT_EQ(KindFound("shop.db", Beginning), "none");
    EXPECT_EQ(KindFound("shop.csv", Beginning), "none");
}

TEST(KviSourceKinds, MakeComponentsOfTheirKindForAnOwner)
{
    for (const auto* const Kind : ImportKinds()) {
        TComponent Owner;
        const auto Import = Kind->Create(&Owner);
        EXPECT_EQ(Import->Owner(), &Owner) << Kind->Name;
        EXPECT_EQ(GetPropValue(*Import, "Extensions"), TVariant(0)) << Kind->Name;
        EXPECT_THAT(Kind->FileFilters(), testing::HasSubstr("All files (*.*)|*.*")) << Kind->Name;
        EXPECT_THAT(Kind->Extensions.front(), testing::StartsWith(".")) << Kind->Name;
    }
}

TEST(KviSourceKinds, ExtendTurnsOnEveryElementOfThePublishedSet)
{
    for (const auto* const Kind : ImportKinds()) {
        const auto Import = Kind->Create(nullptr);
        Kind->Extend(*Import);
        const auto Properties = Import->PublishedProperties();
        const auto& Set = *FindProperty(Properties, "Extensions");
        EXPECT_EQ(Set.Get(*Import), TVariant((1 << Set.Names.size()) - 1)) << Kind->Name;
    }
}

TEST(KviSourceKinds, TableFilesAreOpenedAsWhatTheyAreSaidToBe)
{
    const auto TypeOf = [](TTableTypeImport TableType) {
        const auto Import = FindImportKind(TableType)->Create(nullptr);
        FindImportKind(TableType)->Extend(*Import);
        return GetPropValue(*Import, "TableType");
    };
    EXPECT_EQ(TypeOf(teDBase), TVariant(static_cast<int>(ttFoxPro))); // which does not cut names
    EXPECT_EQ(TypeOf(teParadox), TVariant(static_cast<int>(ttParadox)));
}

TEST(KviSourceKinds, SayWhatTheirFilesHoldAndHowTheyCanBeRead)
{
    std::string Parts, Named, Piped;
    for (const auto* const Kind : ImportKinds()) {
        Parts += std::to_string(Kind->Part);
        Named += Kind->Names == cnHeaderRow ? 'h' : 's';
        Piped += Kind->CanBePiped ? 'p' : '-';
    }
    EXPECT_EQ(Parts, "034111200");
    EXPECT_EQ(Named, "hhshhhsss");
    EXPECT_EQ(Piped, "pppppp---");
}

} // namespace

} // namespace kv
