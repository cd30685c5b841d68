#include "KvTableSource.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFirstRows.h"
#include "KvRowRange.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvTable.h"
#include "KvTerminalText.h"
#include "KvUtf8.h"
#include "Kvi2bde.h"

namespace kv {

namespace {

class TTableSource final : public TSource
{
public:
    TTableSource(const TSourceOptions& Given, TTableTypeImport Kind, TTableType Type);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return ToDisplay(Import.SourceFileName); }
    std::string_view PlaceWord() const override { return "record"; }
    bool HasNames() const override { return true; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;
    std::vector<std::string> Findings() const override;

private:
    bool FindForeignText();
    std::string TextOf(const TField& Field) const;
    std::vector<std::string> TextsOf(int& Unreadable, std::string& Why) const;

    const TSourceOptions Options;
    TKvImportFromBDE Import;
    TTable Table;                                   // of its own, beside that of the run
    bool HasForeignText = false;                    // of no code page that the table names
};

TTableSource::TTableSource(const TSourceOptions& Given, TTableTypeImport Kind, TTableType Type)
    : Options(Given), Import(nullptr, Kind)
{
    if (Options.FileName == "-")
        throw EUsageError("a table file cannot be read from standard input");
    SetUpSource(Import, Options.FileName, RowRangeOf(Options), Options);
    Import.TableType = Type;
    if (!Options.Classic)
        Import.Extensions = {xbOpensForMapping, xbKeepsToRows};
    Table.TableName = Import.SourceFileName;
    Table.TableType = Type;
    Table.Transliterate = !Options.MsDos;
    Table.Open();
    HasForeignText = FindForeignText();
}

std::vector<TSourceColumn> TTableSource::Columns()
{
    std::vector<TSourceColumn> Result;
    for (int I = 0; I < Table.FieldCount(); ++I)
        Result.push_back(ColumnCalled(Table.Fields(I).FieldName()));
    return Result;
}

/// Text becomes UTF-8 by the code page that the table names: what is no UTF-8 then has not been converted.
bool TTableSource::FindForeignText()
{
    if (Options.MsDos || !AnsiIsUtf8())
        return false;
    const auto IsForeign = [this](int Index) {
        const auto& Field = Table.Fields(Index);
        return Field.DataType() == ftString && !IsValidUtf8(Field.PeekValue().ToText());
    };
    try {
        for (int Row = 0; Row < SampleRows && !Table.Eof(); ++Row, Table.Next())
            for (int I = 0; I < Table.FieldCount(); ++I)
                if (IsForeign(I))
                    return true;
    }
    catch (const EFormatError&) {                   // is told where values are read
    }
    return false;
}

/// UTF-8. Bytes that are no text only show their number.
std::string TTableSource::TextOf(const TField& Field) const
{
    const auto Value = Field.PeekValue();
    if (Value.IsString() && IsBinaryField(Field.DataType()))
        return "(" + std::to_string(Value.Text().size()) + " bytes)";
    return ToDisplay(Value.ToText(), Options.MsDos && Value.IsString());
}

/// Counts what cannot be read instead of failing.
std::vector<std::string> TTableSource::TextsOf(int& Unreadable, std::string& Why) const
{
    std::vector<std::string> Texts;
    for (int I = 0; I < Table.FieldCount(); ++I) {
        try {
            Texts.push_back(TextOf(Table.Fields(I)));
        }
        catch (const EFormatError& Error) {
            Texts.emplace_back("(unreadable)");
            if (Unreadable++ == 0)
                Why = ToDisplay(Error.Message);
        }
    }
    return Texts;
}

TSourceRows TTableSource::FirstRows(int Count)
{
    TSourceRows Result{.Columns = WithoutNames(Columns()), .Rows = {}, .Places = {}, .Warnings = {}};
    int Unreadable = 0;
    std::string Why;
    Table.First();
    const auto IsInRange = [&] { return !Table.Eof() && Table.RecNo() <= Import.RowLast; };
    for (; IsInRange() && std::ssize(Result.Rows) < Count; Table.Next()) {
        if (Table.RecNo() < Import.RowFirst)
            continue;
        Result.Rows.push_back(TextsOf(Unreadable, Why));
        Result.Places.push_back(std::to_string(Table.RecNo()));
    }
    Result.HasMore = IsInRange();
    if (Unreadable > 0)
        Result.Warnings.push_back(GroupDigits(Unreadable) + (Unreadable == 1 ? " value" : " values") + " cannot be read: " + Why);
    return Result;
}

std::vector<std::string> TTableSource::Findings() const
{
    std::vector<std::string> Result;
    if (HasForeignText)
        Result.push_back("the table does not name the code page of its text, which is taken for " + LegacyCodePage() +
                         "; --charset msdos takes it for " + OemCodePage());
    if (Options.Classic && (Options.RowFirst || Options.RowLast))
        Result.emplace_back("--classic: all records are imported, whatever --first-row and --last-row say");
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
