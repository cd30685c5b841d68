// Any text as DatasetKeys and Mappings of a run over a small table: the run ends, and its figures add up.
//
//   input := mode:u8 characters:u8 names:u8 keys LF mapping (LF mapping)*
#include "Kvibase.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryDataSet.h"

namespace {

using namespace kv;

/// Two records; a column is named by a digit, any other name is a constant.
class TSmallImport final : public TKvImportBaseComponent
{
public:
    bool NamesAreShort = false;

    using TKvImportBaseComponent::GetFieldItem;

protected:
    void GoFirst() override { Row = 0; }
    bool NeedMore() override { return Row < 2; }
    void GoNext() override { ++Row; }
    int GetTotalCount() override { return 2; }
    bool FieldIsTruncated() const override { return NamesAreShort; }
    TVariant GetFieldValue(const TVariant& Source) override
    {
        static constexpr std::array<std::string_view, 4> Values = {"1", "Ada", "12/31/2002", ""};
        const auto Digit = Source.Text();
        return Digit.size() == 1 && Digit[0] >= '0' && Digit[0] <= '3'
                   ? TVariant::Borrow(Values[static_cast<std::size_t>(Digit[0] - '0')])
                   : Source;
    }

private:
    int Row = 0;
};

void FillTable(TMemoryDataSet& Table)
{
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME", .Size = 10},
                        {.Name = "DUE", .DataType = ftDate}});
    Table.Open();
    for (int I = 0; I < 3; ++I) {
        Table.Append();
        Table.Fields(0).SetValue(I);
        Table.Fields(1).SetValue("Ada");
        Table.Post();
    }
}

/// The head of the input: how the import runs.
void TakeSettings(TFuzzInput& Input, TSmallImport& Import)
{
    Import.AnimatedStatus = false;
    Import.Mode = Input.TakeOneOf({imAppend, imUpdate, imAppendUpdate, imDelete, imCopy});
    Import.CharacterSet = Input.TakeOneOf({csiANSI_WINDOWS, csiASCII_MSDOS});
    Import.NamesAreShort = Input.TakeOneOf({false, true});
}

/// The rest: a line of keys and lines of mappings.
void TakeMappings(TFuzzInput& Input, TSmallImport& Import)
{
    const auto Text = Input.TakeRest();
    const auto KeysEnd = std::min(Text.find('\n'), Text.size());
    Import.DatasetKeys = Text.substr(0, KeysEnd);
    TStrings Lines;
    Lines.SetText(Text.substr(std::min(KeysEnd + 1, Text.size())));
    Import.SetMappings(Lines);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    TMemoryDataSet Table;
    FillTable(Table);
    static TSmallImport Import;                     // once: data formats live for ever
    Import.SetDataSet(&Table);
    TakeSettings(Input, Import);
    TakeMappings(Input, Import);

    int Untouched = 0;
    Import.OnBeforeRecordEvent = [](TKvImportBaseComponent&, const std::string&, TVariant& Values, bool&) {
        for (int I = 0; I <= Values.HighBound(); ++I) {
            const int Found = Import.GetFieldItem(Values[I][1].Text());
            Require(Found >= 0 && Found <= I);
        }
    };
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) {
        Untouched += Import.Statistic.LastAction == iaUnknown;
    };
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {};

    try {
        Import.Execute();
    }
    catch (const Exception&) {                      // no keys where the mode needs them
        Require(Import.Statistic.Result == irUnknown);
        return 0;
    }
    const auto& S = Import.Statistic;
    if (S.Result == irExecuted)
        Require(S.TotalImported == 2 &&
                S.TotalAdded + S.TotalUpdated + S.TotalDeleted + S.TotalErrors + Untouched == 2);
    return 0;
}
