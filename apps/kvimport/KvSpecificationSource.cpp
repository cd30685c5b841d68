#include "KvSpecificationSource.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "KvDisplayText.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSpecification.h"
#include "KvSpreadSheetSource.h"
#include "KvText.h"
#include "KvTextSource.h"
#include "Kvi2cell.h"
#include "Kvi2txt.h"
#include "Kvibase.h"

namespace kv {

namespace {

class TSpecificationSource final : public TSource
{
public:
    explicit TSpecificationSource(const TSourceOptions& Options);

    TKvImportBaseComponent& Component() override { return *Specification.Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return "row"; }
    bool MapsItself() const override { return Named.empty(); }
    bool HasNames() const override { return false; }
    std::vector<TSourceColumn> Columns() override { return Named; }
    TSourceRows FirstRows(int) override { return {}; }
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }
    std::vector<std::string> Findings() const override;
    std::vector<std::string> Warnings() const override;

private:
    void TakeColumns();
    void LookIntoSheet();
    void SetRow(std::string_view Property, std::optional<int> Row);

    const TSpecification Specification;
    const std::string NamedFile;                    // the source that the specification names
    const TSourceFile File;
    std::vector<TSourceColumn> Named;               // by the mappings
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
}

void TSpecificationSource::SetRow(std::string_view Property, std::optional<int> Row)
{
    if (Row)
        SetPropValue(Component(), Property, *Row);
}

void TSpecificationSource::TakeColumns()
{
    auto& Lines = Component().Mappings();
    for (int I = 0; I < Lines.Count(); ++I) {
        const std::string Source(Trim(Lines.ValueAt(I)));
        if (!Source.empty() && std::ranges::count(Named, Source, &TSourceColumn::Source) == 0)
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
