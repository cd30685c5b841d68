#include "KvTableSource.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvSourceOptions.h"
#include "Kvi2bde.h"

namespace kv {

namespace {

class TTableSource final : public TSource
{
public:
    TTableSource(const TSourceOptions& Options, TTableTypeImport Kind, TTableType Type);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return ToDisplay(Import.SourceFileName); }
    std::string_view PlaceWord() const override { return "record"; }
    bool HasNames() const override { return true; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;

private:
    std::string TextOf(const TField& Field) const;

    TKvImportFromBDE Import;
    TTable Table;                                   // of its own, beside that of the run
};

TTableSource::TTableSource(const TSourceOptions& Options, TTableTypeImport Kind, TTableType Type)
    : Import(nullptr, Kind)
{
    if (Options.FileName == "-")
        throw EUsageError("a table file cannot be read from standard input");
    Import.SourceFileName = Options.FileName;
    Import.TableType = Type;
    Import.CharacterSet = Options.MsDos ? csiASCII_MSDOS : csiANSI_WINDOWS;
    Import.RowFirst = Options.RowFirst.value_or(1);
    Import.RowLast = Options.RowLast.value_or(RowLastMax);
    if (!Options.Classic)
        Import.Extensions = {xbOpensForMapping, xbKeepsToRows};
    Table.TableName = Import.SourceFileName;
    Table.TableType = Type;
    Table.Transliterate = !Options.MsDos;
    Table.Open();
}

std::vector<TSourceColumn> TTableSource::Columns()
{
    std::vector<TSourceColumn> Result;
    for (int I = 0; I < Table.FieldCount(); ++I) {
        const auto& Name = Table.Fields(I).FieldName();
        Result.push_back({.Source = Name, .Name = ToDisplay(Name)});
    }
    return Result;
}

/// UTF-8. Bytes that are no text only show their number; why a value cannot be read the import tells.
std::string TTableSource::TextOf(const TField& Field) const
{
    try {
        const auto Value = Field.PeekValue();
        if (Value.IsString() && IsBinaryField(Field.DataType()))
            return "(" + std::to_string(Value.Text().size()) + " bytes)";
        const auto Text = Value.ToText();
        return ToDisplay(Import.CharacterSet == csiASCII_MSDOS && Value.IsString() ? OemToAnsi(Text) : Text);
    }
    catch (const EFormatError&) {
        return "(unreadable)";
    }
}

TSourceRows TTableSource::FirstRows(int Count)
{
    // The columns have no other names than those that mappings use.
    TSourceRows Result;
    for (int I = 0; I < Table.FieldCount(); ++I)
        Result.Columns.push_back({.Source = ToDisplay(Table.Fields(I).FieldName()), .Name = {}});
    Table.First();
    const auto IsInRange = [&] { return !Table.Eof() && Table.RecNo() <= Import.RowLast; };
    for (; IsInRange() && std::ssize(Result.Rows) < Count; Table.Next()) {
        if (Table.RecNo() < Import.RowFirst)
            continue;
        auto& Texts = Result.Rows.emplace_back();
        for (int I = 0; I < Table.FieldCount(); ++I)
            Texts.push_back(TextOf(Table.Fields(I)));
        Result.Places.push_back(std::to_string(Table.RecNo()));
    }
    Result.HasMore = IsInRange();
    return Result;
}

} // namespace

/// As a table of FoxPro, which is read the same way: then names are not cut to ten characters.
std::unique_ptr<TSource> MakeDbaseSource(const TSourceOptions& Options)
{
    return std::make_unique<TTableSource>(Options, teDBase, Options.Classic ? ttDBase : ttFoxPro);
}

std::unique_ptr<TSource> MakeParadoxSource(const TSourceOptions& Options)
{
    return std::make_unique<TTableSource>(Options, teParadox, ttParadox);
}

} // namespace kv
