#include "KvExampleFiles.h"

#include "KvDbaseBuilder.h"
#include "KvParadoxBuilder.h"

namespace kv {

namespace {

constexpr unsigned Dbase4WithMemos = 0x8B, CodePage850 = 0x02;
constexpr unsigned LeaderSize = 10;                 // of a note, in its record

/// The number of a memo's block, as records have it.
std::string BlockText(std::uint32_t Block)
{
    const auto Digits = std::to_string(Block);
    return std::string(10 - Digits.size(), ' ') + Digits;
}

/// Text in code page 850.
std::vector<TExampleFile> DbaseOrders()
{
    TDbaseMemoBuilder Notes(TDbaseMemoBuilder::Dbase4);
    const auto Call = BlockText(Notes.Add("Call Frau Vo\xE1 first:\r\n089 555 0142"));
    const auto Crates = BlockText(Notes.Add("Two crates, one pallet"));
    TDbaseBuilder Table(Dbase4WithMemos);
    Table.Language(CodePage850);
    Table.Field("ID", 'N', 6).Field("CUSTOMER", 'C', 24).Field("CITY", 'C', 14).Field("COUNTRY", 'C', 2);
    Table.Field("ORDERED", 'D', 8).Field("SHIPPED", 'D', 8).Field("AMOUNT", 'N', 10, 2).Field("QTY", 'N', 4);
    Table.Field("PAID", 'L', 1).Field("NOTE", 'M', 10);
    Table.Record({" 10501", "Gr\x94\xE1te Auswahl", "M\x81nchen", "DE", "19990607", "19990609", "    498.50",
                  "  12", "T", Call});
    Table.Record({" 10502", "Br\x9B" "drene S\x9Brensen", "K\x9B" "benhavn", "DK", "19990608", "",
                  "   1204.00", "  30", "F", Crates});
    Table.Deleted({" 10503", "Murtal Handel", "Graz", "AT", "19990610", "", "     86.25", "   3", "F"});
    Table.Record({" 10504", "Cr\x82merie \x90toile", "Li\x8Age", "BE", "19990614", "19990618", "", "   5",
                  "?"});
    return {{"orders.dbf", Table.Build()}, {"orders.dbt", Notes.Build()}};
}

/// What a record holds of a note: where it stands in the other file, behind its first characters.
std::string NoteField(TParadoxBlobBuilder& Notes, std::string Text)
{
    const auto Size = Text.size();
    const auto Place = Notes.AddSmall(Text);
    Text.resize(LeaderSize);
    return ParadoxBlobField(Text, Place, Size);
}

/// Text in code page 1252; dates are days from year 1.
std::vector<TExampleFile> ParadoxOrders()
{
    const std::string Yes = "\x81", No = "\x80";
    TParadoxBlobBuilder Notes;
    TParadoxBuilder Table;
    Table.CodePage(1252).Keyed();
    Table.Field("ID", 'I').Field("Customer", 'A', 24).Field("City", 'A', 14).Field("Country", 'A', 2);
    Table.Field("Ordered", 'D').Field("Shipped", 'D').Field("Amount", '$').Field("Qty", 'S')
         .Field("Paid", 'L');
    Table.Field("Note", 'M', LeaderSize + 10);
    Table.Record({ParadoxLong(10601), "M\xFCller, S\xF6hne & Co.", "K\xF6ln", "DE", ParadoxLong(729926),
                  ParadoxLong(729928),
                  ParadoxNumber(1871.2), ParadoxShort(9), Yes,
                  NoteField(Notes, "Paid in \x80, invoice in DM")});
    Table.Record({ParadoxLong(10602), "Pe\xF1" "a Hermanos", "C\xE1" "diz", "ES", ParadoxLong(729929), "",
                  ParadoxNumber(4157), ParadoxShort(60), No, NoteField(Notes, "Ship with the next load")});
    Table.Record({ParadoxLong(10603), "Au Panier Lyonnais", "Lyon", "FR", ParadoxLong(729933), "",
                  ParadoxNumber(-120), ParadoxShort(1), No});
    return {{"orders.db", Table.Build()}, {"orders.mb", Notes.Build()}};
}

} // namespace

std::vector<TExampleFile> ExampleTables()
{
    auto Files = DbaseOrders();
    for (auto& File : ParadoxOrders())
        Files.push_back(std::move(File));
    return Files;
}

} // namespace kv
