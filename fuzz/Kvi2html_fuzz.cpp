// Any bytes as an HTML page that is imported under any settings: the run ends, its figures add up, and by
// the older rules it has the rows that a program gets for its preview.
//
//   input := extensions:u8 rowfirst:u8 tablenumber:u8 automapping:u8 page
#include "Kvi2html.h"

#include <algorithm>
#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryDataSet.h"
#include "KvMemoryFile.h"

namespace {

using namespace kv;

void CheckPreview(const TKvImportFromHTML& Import)
{
    TStrings Columns;
    int Rows = 0;
    LoadHTMLPreview(nullptr, "a;b;c", Import.SourceFileName, {}, Import.RowFirst, Import.RowLast, false,
                    Columns,
                    [&Rows](TPersistent*, int ColCount, int Row, bool, const TVariant&) {
                        Require(ColCount == 3 && Row == ++Rows);
                    });
    Require(Rows == std::min(Import.Statistic.TotalImported, 20 - std::max(Import.RowFirst, 1) + 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    static TKvImportFromHTML Import;                // once: data formats live for ever
    TMemoryDataSet Table;
    Table.SetFieldDefs({{.Name = "A"}, {.Name = "B", .DataType = ftInteger}, {.Name = "C", .Size = 10}});
    Table.Open();

    TFuzzInput Input(Data, Size);
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    Import.Extensions = TKvIHTMLExtensions::FromBits(Input.Take<std::uint8_t>());
    Import.RowFirst = Input.TakeOneOf({1, 2, 0, 5});
    Import.TableNumber = Input.TakeOneOf({0, 1, 2});
    const bool AutoMapping = Input.TakeOneOf({false, true});
    Import.SetMappings(AutoMapping ? TStrings() : TStrings{"A=Field1", "B=Field2", "C=Field1000"});
    const TMemoryFile File(Input.TakeRest());
    Import.SourceFileName = File.Name();

    Import.Execute();
    const auto& S = Import.Statistic;
    Require(S.Result == irExecuted || !Import.ErrorMessage().empty());
    if (S.Result == irExecuted) {
        const int Unread = S.TotalImported - S.TotalAdded; // with a value that cannot be read
        Require(Unread >= 0 && Table.RecordCount() == S.TotalAdded - (S.TotalErrors - Unread));
        Require(Unread == 0 || !Import.Extensions.IsEmpty());
        if (Import.Extensions.IsEmpty() && Import.TableNumber == 0)
            CheckPreview(Import);
    }
    return 0;
}
