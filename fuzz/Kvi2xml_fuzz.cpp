// Any bytes as an XML data packet that is imported under any settings: the run ends, its figures add up, and
// by the older rules it has the records that a program gets for its preview.
//
//   input := extensions:u8 rowfirst:u8 rowtag:u8 automapping:u8 packet
#include "Kvi2xml.h"

#include <algorithm>
#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryDataSet.h"
#include "KvMemoryFile.h"
#include "KvXmlRows.h"

namespace {

using namespace kv;

void CheckPreview(const TKvImportFromXML& Import)
{
    TStrings Columns;
    int Rows = 0;
    LoadXMLPreview(nullptr, "A;;USERID", Import.SourceFileName, Import.TableName, Import.RowFirst,
                   Import.RowLast, false, Columns,
                   [&Rows](TPersistent*, int ColCount, int Row, bool, const TVariant&) {
                       Require(ColCount == 3 && Row == ++Rows);
                   });
    Require(Rows == std::min(Import.Statistic.TotalImported, 20 - std::max(Import.RowFirst, 1) + 1));
}

/// The names of attributes belong to the record; each has the value that a search by its name finds first.
void CheckAttributes(std::string_view Packet, TKvIXMLExtensions Extensions)
{
    TKvXmlRows Rows(Packet, Extensions, {}, "FILE");
    try {
        for (int I = 0; I < 50 && Rows.Next(); ++I)
            for (const auto Name : Rows.AttributeNames())
                if (const auto Column = Rows.AddColumn(Name); Column < 200)
                    Rows.Value(Column);
    }
    catch (const Exception&) {                      // what is no XML
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    static TKvImportFromXML Import;                 // once: data formats live for ever
    TMemoryDataSet Table;
    Table.SetFieldDefs({{.Name = "A"}, {.Name = "ID", .DataType = ftInteger}, {.Name = "C", .Size = 10}});
    Table.Open();

    TFuzzInput Input(Data, Size);
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    Import.Extensions = TKvIXMLExtensions::FromBits(Input.Take<std::uint8_t>());
    Import.RowFirst = Input.TakeOneOf({1, 2, 0, 5});
    Import.TableName = Input.TakeOneOf({"", "Orders"});
    const bool AutoMapping = Input.TakeOneOf({false, true});
    Import.SetMappings(AutoMapping ? TStrings() : TStrings{"A=A", "ID=ID", "C=customer_name"});
    const auto Packet = Input.TakeRest();
    const TMemoryFile File(Packet);
    Import.SourceFileName = File.Name();

    Import.Execute();
    const auto& S = Import.Statistic;
    Require(S.Result == irExecuted || !Import.ErrorMessage().empty());
    if (S.Result == irExecuted) {
        const int Unread = S.TotalImported - S.TotalAdded; // with a value that cannot be read
        Require(Unread >= 0 && Table.RecordCount() == S.TotalAdded - (S.TotalErrors - Unread));
        Require(Unread == 0 || !Import.Extensions.IsEmpty());
        if (Import.Extensions.IsEmpty())
            CheckPreview(Import);
    }
    CheckAttributes(Packet, Import.Extensions);
    return 0;
}
