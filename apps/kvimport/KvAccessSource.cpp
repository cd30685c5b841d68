#include "KvAccessSource.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KvAccessSession.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvExitStatus.h"
#include "KvFormatSettings.h"
#include "KvOptionText.h"
#include "KvRowRange.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvText.h"
#include "Kvi2ole.h"

namespace kv {

namespace {

class TAccessSource final : public TSource
{
public:
    explicit TAccessSource(const TSourceOptions& Given);

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

    const TSourceOptions Options;
    TKvImportFromAccess Import;
    TKvAccessSession Session;                       // of its own, beside that of the run
    bool IsOnlyTable = false;
};

TAccessSource::TAccessSource(const TSourceOptions& Given) : Options(Given)
{
    if (Options.FileName == "-")
        throw EUsageError("an Access database cannot be read from standard input");
    if (Options.MsDos)
        throw EUsageError("--charset msdos has no meaning for a source of kind access, whose text has no code page");
    SetUpSource(Import, Options.FileName, RowRangeOf(Options), Options);
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
    if (Names.empty())
        throw Exception(DisplayName() + " has no tables");
    if (Name.empty())
        throw Exception("--source-table is missing; the tables of " + DisplayName() + " are " + JoinNames(Names));
    const auto Found = std::ranges::find_if(Tables, [&Name](const TAccessTable& Each) { return SameText(Each.Name, Name); });
    if (Found == Tables.end())
        throw Exception("--source-table: " + DisplayName() + " has no table '" + ToDisplay(Name) + "'; its tables are " +
                        JoinNames(Names));
    return Found->Name;
}

std::vector<TSourceColumn> TAccessSource::Columns()
{
    std::vector<TSourceColumn> Result;
    for (const auto& Field : Session.Recordset()->Fields())
        Result.push_back(ColumnCalled(Field.Name));
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
    TSourceRows Result{.Columns = WithoutNames(Columns()), .Rows = {}, .Places = {}, .Warnings = {}};
    auto& Recordset = *Session.Recordset();
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
    std::vector<std::string> Result;
    if (IsOnlyTable)
        Result.push_back("table " + ToDisplay(Import.TableName) + ", the only one");
    if (Options.Classic && Options.RowFirst)
        Result.emplace_back("--classic: records are taken from the first one on; --first-row and --last-row only say "
                            "how many");
    return Result;
}

} // namespace

std::unique_ptr<TSource> MakeAccessSource(const TSourceOptions& Options)
{
    return std::make_unique<TAccessSource>(Options);
}

} // namespace kv
