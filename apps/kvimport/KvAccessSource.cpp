#include "KvAccessSource.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFormatSettings.h"
#include "KvOptionText.h"
#include "KvSourceOptions.h"
#include "KvText.h"
#include "Kvi2ole.h"

namespace kv {

namespace {

class TAccessSource final : public TSource
{
public:
    explicit TAccessSource(const TSourceOptions& Options);

    TKvImportBaseComponent& Component() override { return Import; }
    std::string DisplayName() const override { return ToDisplay(Import.SourceFileName); }
    std::string_view PlaceWord() const override { return "record"; }
    bool HasNames() const override { return true; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;
    std::vector<std::string> Findings() const override;

private:
    std::string FindTable(const std::string& Name);
    std::vector<std::string> TableNames();
    std::string TextAt(int Field);

    TKvImportFromAccess Import;
    TKvAccessSession Session;                       // of its own, beside that of the run
    bool IsOnlyTable = false;
};

TAccessSource::TAccessSource(const TSourceOptions& Options)
{
    if (Options.FileName == "-")
        throw EUsageError("an Access database cannot be read from standard input");
    Import.SourceFileName = Options.FileName;
    Import.CharacterSet = Options.MsDos ? csiASCII_MSDOS : csiANSI_WINDOWS;
    Import.RowFirst = Options.RowFirst.value_or(1);
    Import.RowLast = Options.RowLast.value_or(RowLastMax);
    if (!Options.Classic)
        Import.Extensions = {xaOpensForMapping, xaSkipsToRowFirst};
    Session.Open("", Import.SourceFileName);
    Import.TableName = FindTable(FromDisplay(Options.Table.Table));
    Session.Open(Import.TableName, Import.SourceFileName);
}

std::vector<std::string> TAccessSource::TableNames()
{
    std::vector<std::string> Names;
    for (const auto& Table : Session.Database().TableDefs())
        if (!Table.IsSystem)
            Names.push_back(ToDisplay(Table.Name));
    return Names;
}

std::string TAccessSource::FindTable(const std::string& Name)
{
    const auto& Tables = Session.Database().TableDefs();
    const auto Names = TableNames();
    if (Name.empty() && Names.size() == 1) {
        IsOnlyTable = true;
        return FromDisplay(Names.front());
    }
    const auto There = Names.empty() ? "; it has none" : "; its tables are " + JoinNames(Names);
    if (Name.empty())
        throw Exception("--source-table: " + DisplayName() + " does not say which table is meant" + There);
    const auto Found = std::ranges::find_if(Tables, [&Name](const TAccessTable& Each) { return SameText(Each.Name, Name); });
    if (Found == Tables.end())
        throw Exception("--source-table: " + DisplayName() + " has no table '" + ToDisplay(Name) + "'" + There);
    return Found->Name;
}

std::vector<TSourceColumn> TAccessSource::Columns()
{
    std::vector<TSourceColumn> Result;
    for (const auto& Field : Session.Recordset()->Fields())
        Result.push_back({.Source = Field.Name, .Name = ToDisplay(Field.Name)});
    return Result;
}

/// UTF-8. Bytes that are no text only show their number.
std::string TAccessSource::TextAt(int Field)
{
    const auto Type = Session.Recordset()->Fields()[static_cast<std::size_t>(Field)].Type;
    const auto Value = Session.Value(Field, FormatSettings().DecimalSeparator);
    if (Value.IsString() && (Type == afOle || Type == afBinary))
        return "(" + std::to_string(Value.Text().size()) + " bytes)";
    return ToDisplay(Value.ToText());
}

TSourceRows TAccessSource::FirstRows(int Count)
{
    // The columns have no other names than those that mappings use.
    TSourceRows Result;
    auto& Recordset = *Session.Recordset();
    for (const auto& Field : Recordset.Fields())
        Result.Columns.push_back({.Source = ToDisplay(Field.Name), .Name = {}});
    Recordset.MoveFirst();
    int Number = 1;
    for (; !Recordset.Eof() && Number <= Import.RowLast && std::ssize(Result.Rows) < Count; Recordset.MoveNext(), ++Number) {
        if (Number < Import.RowFirst)
            continue;
        auto& Texts = Result.Rows.emplace_back();
        for (int I = 0; I < std::ssize(Result.Columns); ++I)
            Texts.push_back(TextAt(I));
        Result.Places.push_back(std::to_string(Number));
    }
    Result.HasMore = !Recordset.Eof() && Number <= Import.RowLast;
    return Result;
}

std::vector<std::string> TAccessSource::Findings() const
{
    if (!IsOnlyTable)
        return {};
    return {"table " + ToDisplay(Import.TableName) + ", the only one"};
}

} // namespace

std::unique_ptr<TSource> MakeAccessSource(const TSourceOptions& Options)
{
    return std::make_unique<TAccessSource>(Options);
}

} // namespace kv
