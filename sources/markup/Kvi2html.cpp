#include "Kvi2html.h"

#include <algorithm>
#include <limits>

#include "KvException.h"
#include "KvHtmlRows.h"
#include "KvHtmlTables.h"
#include "KvMarkupEncoding.h"
#include "KvMarkupPreview.h"
#include "KvNumberText.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xhTagSyntax",   "xhHeaderCells", "xhReferences",
                                               "xhFoldedSpace", "xhSpans",       "xhEncoding",
                                               "xhHeaderNames", "xhEmptyIsNull"};
constexpr char MsgNoColumn[] = "%s has no column \"%s\"";
constexpr char MsgNoTable[] = "%s has no table %d: it has tables 1 to %d";
constexpr char MsgNoTables[] = "%s has no table";

constexpr std::string_view FieldPrefix = "Field";
constexpr auto NoColumn = std::numeric_limits<std::size_t>::max();

/// The column, from 0, that a name like "Field3" counts to.
std::size_t NumberedColumn(std::string_view Name)
{
    if (!SameText(Name.substr(0, FieldPrefix.size()), FieldPrefix))
        return NoColumn;
    const auto Number = TryTextToInt(Name.substr(FieldPrefix.size())).value_or(0);
    return Number > 0 ? static_cast<std::size_t>(Number - 1) : NoColumn;
}

/// The reverse: a header's own text might read as the number of another column.
std::string ColumnName(std::ptrdiff_t Column)
{
    return std::string(FieldPrefix) + std::to_string(Column + 1);
}

std::string OnOneLine(std::string Text)
{
    std::ranges::replace(Text, '\n', ' ');
    return Text;
}

/// The import as a preview shows it: an empty cell is one, whatever a run makes of it.
class TPreviewOfHTML final : public TKvImportFromHTML
{
    TVariant EmptyCell(const TVariant& Source) const override
    {
        return Extensions.Contains(xhEmptyIsNull) ? TKvImportFromHTML::EmptyCell(Source) : TVariant("");
    }
};

} // namespace

TKvImportFromHTML::TKvImportFromHTML(TComponent* Owner) : TKvImportFromMarkup(Owner, teHTML, Extension()) {}

TKvImportFromHTML::~TKvImportFromHTML() = default;

TPublishedProperties TKvImportFromHTML::PublishedProperties() const
{
    using T = TKvImportFromHTML;
    return PublishAfter(TKvImportFromMarkup::PublishedProperties(),
                        {AsPlace(Publish("TableNumber", &T::TableNumber)),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromHTML::FillFileFilters()
{
    return TKvImportFromMarkup::FillFileFilters() + "|HTML file (*.htm;*.html)|*.HTM;*.HTML|";
}

// Loading.

TKvImportFromHTML::TEncodingFinder TKvImportFromHTML::EncodingFinder() const
{
    return Extensions.Contains(xhEncoding) ? FindHtmlEncoding : nullptr;
}

void TKvImportFromHTML::BeforeImport()
{
    Columns.Clear();
    Header.clear();
    const bool IsSeen = IsKept() && HasCount();     // by a look, which has taken the facts
    TKvImportFromMarkup::BeforeImport();
    if (!IsSeen)
        TakeFacts(*Rows);
    ReadHeader();
}

void TKvImportFromHTML::TakeFacts(const TKvHtmlRows& Page)
{
    PageFacts.Tables = TableNumber == 0 ? Page.Tables() : 1;
    PageFacts.IsCutOff = Page.IsCutOff();
}

void TKvImportFromHTML::ReadHeader()
{
    if (Extensions.Contains(xhHeaderNames) && RowFirst > 1)
        Header = ReadHtmlHeader(*MakeRows(Text()));
}

std::unique_ptr<TKvHtmlRows> TKvImportFromHTML::MakeRows(std::string_view Text) const
{
    return std::make_unique<TKvHtmlRows>(Text, Extensions, FlavourOf(Text), TableNumber);
}

void TKvImportFromHTML::StartRows(std::string_view Text)
{
    Rows = MakeRows(Text);
}

std::string TKvImportFromHTML::RowSettings() const
{
    return std::to_string(TableNumber) + " " + std::to_string(Extensions.Bits());
}

bool TKvImportFromHTML::NextRow()
{
    return MoveOn(*Rows);
}

bool TKvImportFromHTML::MoveOn(TKvHtmlRows& Page) const
{
    try {
        return Page.Next();
    }
    catch (Exception& Error) {                      // rows know nothing of their file
        AddFacts(Error, Page.Begin());
        throw;
    }
}

void TKvImportFromHTML::AddFacts(Exception& Error, const char* Place) const
{
    Error.Facts.FileName = SourceFileName;
    Error.Facts.Rule = erFormat;
    Error.Facts.Offset = OffsetOf(Place);
}

const char* TKvImportFromHTML::RowBegin() const
{
    return Rows->Begin();
}

void TKvImportFromHTML::AfterImport()
{
    Rows.reset();
    TKvImportFromMarkup::AfterImport();
}

// A look.

void TKvImportFromHTML::BeforeLook(const TKvISourceLook& What)
{
    Columns.Clear();
    Header.clear();
    TKvImportFromMarkup::BeforeLook(What);
    if (!HasCount())
        PageFacts = {};
    if (!IsKept())
        return;                                     // cancelled
    CheckTableNumber();
    ReadHeader();
}

void TKvImportFromHTML::CheckTableNumber() const
{
    if (TableNumber < 1)
        return;
    const auto Page = MakeRows(Text());
    MoveOn(*Page);
    if (Page->Tables() >= TableNumber)
        return;
    const auto Number = std::to_string(TableNumber), Last = std::to_string(Page->Tables());
    throw Exception(Page->Tables() == 0 ? FormatText(MsgNoTables, {SourceFileName})
                                       : FormatText(MsgNoTable, {SourceFileName, Number, Last}),
                    {.FileName = SourceFileName,
                     .Place = "table " + Number,
                     .Value = Number,
                     .Rule = erMissing});
}

/// Passes over all rows, counts those that are imported and finds the width of the widest, the header
/// included. Answers the texts of the header's cells.
std::vector<std::string> TKvImportFromHTML::PassRows(int HeaderRow, std::size_t& Width)
{
    std::vector<std::string> Titles;
    const auto Page = MakeRows(Text());
    std::int64_t Count = 0;
    try {
        for (std::int64_t Number = 1; MoveOn(*Page); ++Number) {
            if (Number == HeaderRow || IsImported(Number))
                Width = std::max(Width, Page->Columns());
            Count += IsImported(Number) ? 1 : 0;
            for (std::size_t I = 0; Number == HeaderRow && I < Page->Columns(); ++I)
                Titles.push_back(OnOneLine(TitleText(Page->Text(I))));
            if (!GoesOnAfter(Number))
                return Titles;
        }
        KeepCount(Count);
        TakeFacts(*Page);
    }
    catch (const Exception&) {                      // the rows before it can be shown; a run ends by it
    }
    return Titles;
}

std::vector<TKvISourceColumn> TKvImportFromHTML::SourceColumns(int HeaderRow)
{
    std::size_t Width = 0;
    const auto Titles = PassRows(HeaderRow, Width);
    std::vector<TKvISourceColumn> Result(Width);
    for (std::size_t I = 0; I < Width; ++I) {
        Result[I].Name = ColumnName(static_cast<std::ptrdiff_t>(I));
        if (I < Titles.size())
            Result[I].Title = Titles[I];
    }
    return Result;
}

int TKvImportFromHTML::RecordWidth() const
{
    return static_cast<int>(Rows->Columns());
}

void TKvImportFromHTML::AfterLook()
{
    if (Rows && !HasCount())
        TakeFacts(*Rows);                           // as far as it was looked at
    Rows.reset();
    TKvImportFromMarkup::AfterLook();
}

TVariant TKvImportFromHTML::SourceRecord()
{
    if (!HasRow())
        return Null;
    auto Texts = TVariant::Array(0, RecordWidth() - 1);
    for (int I = 0; I < RecordWidth(); ++I)
        Texts[I].SetText(Rows->Text(static_cast<std::size_t>(I)));
    return Texts;
}

std::vector<TKvISourcePart> TKvImportFromHTML::SourceParts()
{
    std::vector<TKvISourcePart> Parts;
    if (!LoadForLook())
        return Parts;                               // cancelled
    for (const auto& Table : FindHtmlTables(Text(), Extensions, [this] { return KeepsRunning(); })) {
        auto& Part = Parts.emplace_back();
        Part.Rows = Table.Rows;
        Part.Columns = Table.Columns;
        Part.Error = Table.Error;
    }
    return Parts;
}

void TKvImportFromHTML::SelectPart(int Index, const TKvISourcePart&)
{
    TableNumber = Index + 1;
}

std::vector<TKvISourceRemark> TKvImportFromHTML::SourceRemarks() const
{
    auto Remarks = TKvImportFromMarkup::SourceRemarks();
    if (PageFacts.Tables > 1)
        Remarks.push_back({.Kind = srSeveralTables, .Count = PageFacts.Tables});
    if (PageFacts.IsCutOff)
        Remarks.push_back({.Kind = srCutOff});
    return Remarks;
}

/// A column goes by the text above it, too.
TKvISourceName TKvImportFromHTML::ResolveName(const std::string& Wanted,
                                              const std::vector<TKvISourceColumn>& Shown) const
{
    if (auto Found = TKvImportFromMarkup::ResolveName(Wanted, Shown); Found.Kind == snColumn)
        return Found;
    if (!Extensions.Contains(xhHeaderNames))
        return {.Kind = snByOrder, .Name = Wanted};
    if (NumberedColumn(Wanted) != NoColumn)
        return {.Kind = snMissing, .Name = Wanted};
    const auto IsAbove = [&Wanted](const auto& Column) { return SameText(Column.Title, Wanted); };
    const auto Titled = std::ranges::find_if(Shown, IsAbove);
    if (Wanted.empty() || Titled == Shown.end())
        return {.Kind = snNothing, .Name = Wanted};
    return {.Kind = snColumn, .Name = Titled->Name};
}

// The values.

TVariant TKvImportFromHTML::GetFieldValue(const TVariant& Source)
{
    const auto Column =
        Columns.Find(Source, [this](std::string_view Each) { return ResolveColumn(Each); });
    const auto Text = Rows->Text(Column);
    CheckValue(Text);
    return Text.empty() ? EmptyCell(Source) : TVariant::Borrow(Text);
}

TVariant TKvImportFromHTML::EmptyCell(const TVariant& Source) const
{
    if (Extensions.Contains(xhEmptyIsNull))
        return Null;
    return TVariant::Borrow(Source.Text());
}

std::vector<std::string>::const_iterator TKvImportFromHTML::FindHeader(std::string_view Source) const
{
    return std::ranges::find_if(Header, [Source](const auto& Each) { return SameText(Each, Source); });
}

std::size_t TKvImportFromHTML::ResolveColumn(std::string_view Source) const
{
    if (!Extensions.Contains(xhHeaderNames)) {
        const int Item = GetFieldItem(Source);
        return Item >= 0 ? static_cast<std::size_t>(Item) : NoColumn;
    }
    if (const auto Numbered = NumberedColumn(Source); Numbered != NoColumn)
        return Numbered;
    if (const auto Named = FindHeader(Source); Named != Header.end())
        return static_cast<std::size_t>(Named - Header.begin());
    throw Exception(FormatText(MsgNoColumn, {SourceFileName, Source}),
                    {.FileName = SourceFileName, .Field = std::string(Source), .Rule = erMissing});
}

// Automatic mapping.

/// With RowFirst above 1 by the names of the columns, which only the extension reads: without it no field
/// gets a mapping then, as programs know it.
void TKvImportFromHTML::DetectAutoMapping()
{
    const bool WasKept = IsKept();
    BeforeImport();
    MapFields([this](const TField& Field) {
        if (RowFirst <= 1)
            return Extensions.Contains(xhHeaderNames) ? ColumnName(Field.Index()) : Field.FieldName();
        const auto Found = FindHeader(Field.FieldName());
        return Found != Header.end() ? ColumnName(Found - Header.begin()) : std::string();
    });
    EndDetecting(WasKept);
}

// Routines without a component.

std::string_view FindHtmlEncoding(std::string_view Text)
{
    for (const auto Find : {FindWideEncoding, FindXmlEncoding, FindMetaCharset})
        if (const auto Name = Find(Text); !Name.empty())
            return Name;
    return {};
}

void LoadHTMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                     std::string_view /*Unused*/, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                     const TPreviewCallback& Callback, TKvIHTMLExtensions Extensions)
{
    TPreviewOfHTML Import;
    Import.Extensions = Extensions;
    const TKvMarkupPreview Preview{Sender, FieldNames, FileName, RowFirst, RowLast, Flag, Columns, Callback};
    auto Sources = Preview.Names();
    for (auto& Name : Sources)
        Name = *std::ranges::find_if(Sources, [&Name](const auto& Each) { return SameText(Each, Name); });
    ShowPreview(Import, Preview, std::move(Sources));
}

} // namespace kv
