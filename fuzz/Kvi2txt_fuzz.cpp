// Any bytes as a text file that is imported under any settings: the run ends, its figures add up, and
// by the older reading it has the lines that a program gets for its preview.
//
//   input := extensions:u8 fixed:u8 rowfirst:u8 delimiter:u8 qualifier:u8 automapping:u8 separator:u8
//            headerline:u8 charset:u8 text
#include "Kvi2txt.h"

#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryDataSet.h"
#include "KvMemoryFile.h"

namespace {

using namespace kv;

void CheckLines(const TKvImportFromText& Import)
{
    const char Qualifier = Import.GetTextQualifierCustom();
    std::string FirstLine;
    TStrings Lines;
    LoadTextFile(false, FirstLine, Lines, Import.SourceFileName, Import.GetRecordSeparatorCustom(),
                 {&Qualifier, 1}, Import.RowFirst, Import.RowLast);
    Require(Import.Statistic.TotalImported == Lines.Count());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    static TKvImportFromText Import;                // once: data formats live for ever
    TMemoryDataSet Table;
    Table.SetFieldDefs({{.Name = "A"}, {.Name = "B", .DataType = ftInteger}, {.Name = "C", .Size = 10}});
    Table.Open();

    TFuzzInput Input(Data, Size);
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    const auto Extensions = Input.Take<std::uint8_t>();
    Import.Extensions = TKvITextExtensions::FromBits(Extensions & 127);
    Import.RunExtensions = TKvIRunExtensions();
    if (Extensions & 128)
        Import.RunExtensions.Include(rxNoEmptyRecords);
    const auto Fixed = Input.Take<std::uint8_t>();
    Import.Fixed = (Fixed & 1) != 0;
    Import.FixedUnit = (Fixed & 2) != 0 ? tuCharacters : tuBytes;
    Import.RowFirst = Input.TakeOneOf({1, 2, 0, 5});
    Import.SetFieldDelimiterCustom(Input.TakeOneOf({',', '\t', '\0', '"'}));
    Import.SetTextQualifierCustom(Input.TakeOneOf({'"', '\'', '\0'}));
    const bool AutoMapping = Input.TakeOneOf({false, true});
    Import.SetMappings(AutoMapping ? TStrings() : TStrings{"A=Field1", "B=Field2", "C=Text3-9"});
    Import.SetRecordSeparatorCustom(Input.TakeOneOf({"\r\n", "\n", "\r", "|", "", "<|>"}));
    Import.HeaderLine = Input.TakeOneOf({1, 0, 2, 7});
    Import.CharacterSet = Input.TakeOneOf({csiANSI_WINDOWS, csiASCII_MSDOS});
    const TMemoryFile File(Input.TakeRest());
    Import.SourceFileName = File.Name();

    Import.Execute();
    const auto& S = Import.Statistic;
    const auto& Counts = Import.FieldCounts();
    Require(S.Result == irExecuted || !Import.ErrorMessage().empty());
    Require(Counts.FewerLines + Counts.MoreLines <= S.TotalImported);
    if (S.Result == irExecuted) {
        Require(S.TotalImported == S.TotalAdded && Table.RecordCount() == S.TotalAdded - S.TotalErrors);
        if (Import.Extensions.IsEmpty() && Import.RunExtensions.IsEmpty())
            CheckLines(Import);
    }
    return 0;
}
