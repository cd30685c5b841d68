#include "KvSpecificationSource.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "KvDisplayText.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSpecification.h"
#include "KvSpreadSheetSource.h"
#include "KvTable.h"
#include "KvText.h"
#include "KvTextSource.h"
#include "Kvi2bde.h"
#include "Kvi2cell.h"
#include "Kvi2ole.h"
#include "Kvi2txt.h"
#include "Kvibase.h"

namespace kv {

namespace {

/// The fields of the table that `Import` reads; nothing for other kinds, whose mappings name no constants.
std::optional<std::vector<std::string>> FieldsOf(const TKvImportBaseComponent& Import)
{
    if (const auto* const Bde = dynamic_cast<const TKvImportFromBDE*>(&Import)) {
        TTable Table;
        Table.TableName = Bde->SourceFileName;
        Table.TableType = Bde->TableType;
        Table.Open();
        std::vector<std::string> Names;
        for (int I = 0; I < Table.FieldCount(); ++I)
            Names.push_back(Table.Fields(I).FieldName());
        return Names;
    }
    if (const auto* const Access = dynamic_cast<const TKvImportFromAccess*>(&Import)) {
        TStrings Names;
        GetAccessTables(Names, Access->SourceFileName, Access->TableName);
        return std::vector<std::string>(Names.begin(), Names.end());
    }
    return std::nullopt;
}

/// Whether the component takes `Column` for the field `Name`.
bool IsField(const TKvImportBaseComponent& Import, std::string_view Name, std::string_view Column)
{
    constexpr std::size_t TruncatedSize = 10;       // of what mappings may say of a dBase table
    if (dynamic_cast<const TKvImportFromAccess*>(&Import))
        return Name == Column;
    return SameText(Name, Column) || (Column.size() == TruncatedSize && SameText(Name.substr(0, TruncatedSize), Column));
}

class TSpecificationSource final : public TSource
{
public:
    explicit TSpecificationSource(const TSourceOptions& Options);

    TKvImportBaseComponent& Component() override { return *Specification.Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return "row"; }
    bool MapsItself() const override { return FMapsItself; }
    bool HasNames() const override { return false; }
    std::vector<TSourceColumn> Columns() override { return Named; }
    TSourceRows FirstRows(int) override { return {}; }
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }
    std::vector<std::string> Findings() const override;
    std::vector<std::string> Warnings() const override;

private:
    void TakeColumns();
    int HeaderLineOf(int RowFirst) const;
    void LookIntoSheet();
    void SetRow(std::string_view Property, std::optional<int> Row);

    const TSpecification Specification;
    const std::string NamedFile;                    // the source that the specification names
    const TSourceFile File;
    std::vector<TSourceColumn> Named;               // by the mappings, those that are there
    bool FMapsItself = true;                        // there are no mappings
    std::vector<std::string> OfSheet;               // warnings
};

TSpecificationSource::TSpecificationSource(const TSourceOptions& Options)
    : Specification(Options.Specification),
      NamedFile(ToDisplay(Specification.Text("SourceFileName"))),
      File(Options.FileName)
{
    SetPropValue(Component(), "SourceFileName", File.Name());
    SetRow("RowFirst", Options.RowFirst);
    SetRow("RowLast", Options.RowLast);
    TakeColumns();
    LookIntoSheet();
    if (auto* const Text = dynamic_cast<TKvImportFromText*>(&Component()))
        Text->HeaderLine = HeaderLineOf(Text->RowFirst);
}

/// The file does not tell. A title may stand above, but hardly one line of it; columns that find their fields
/// by themselves have their names in line 1.
int TSpecificationSource::HeaderLineOf(int RowFirst) const
{
    return RowFirst == 2 || (RowFirst > 2 && MapsItself()) ? 1 : 0;
}

void TSpecificationSource::SetRow(std::string_view Property, std::optional<int> Row)
{
    if (Row)
        SetPropValue(Component(), Property, *Row);
}

void TSpecificationSource::TakeColumns()
{
    auto& Lines = Component().Mappings();
    const auto Fields = Lines.IsEmpty() ? std::nullopt : FieldsOf(Component());
    const auto IsThere = [&](const std::string& Source) {
        return !Fields || std::ranges::any_of(*Fields, [&](const auto& Name) { return IsField(Component(), Name, Source); });
    };
    for (int I = 0; I < Lines.Count(); ++I) {
        const std::string Source(Trim(Lines.ValueAt(I)));
        FMapsItself = FMapsItself && Source.empty();
        if (!Source.empty() && std::ranges::count(Named, Source, &TSourceColumn::Source) == 0 && IsThere(Source))
            Named.push_back({.Source = Source, .Name = {}});
    }
    Lines.Clear();
}

void TSpecificationSource::LookIntoSheet()
{
    if (auto* const Import = dynamic_cast<TKvImportFromCell*>(&Component()))
        OfSheet = SheetWarnings(LoadWorkBook(*Import, File).Sheets.Spreadsheet(Import->SheetIndex).Cells, Import->Extensions);
}

std::vector<std::string> TSpecificationSource::Findings() const
{
    std::vector<std::string> Result{"as " + Specification.FileName + " has it"};
    if (NamedFile != File.DisplayName())
        Result.back() += ", which names the source " + (NamedFile.empty() ? "not" : NamedFile);
    if (MapsItself())
        Result.push_back("it has no mappings: columns and fields are joined by the rules of the component");
    return Result;
}

std::vector<std::string> TSpecificationSource::Warnings() const
{
    const auto* const Text = dynamic_cast<const TKvImportFromText*>(Specification.Import.get());
    return Text ? FieldCountWarnings(*Text) : OfSheet;
}

} // namespace

std::unique_ptr<TSource> MakeSpecificationSource(const TSourceOptions& Options)
{
    return std::make_unique<TSpecificationSource>(Options);
}

} // namespace kv
