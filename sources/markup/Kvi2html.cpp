#include "Kvi2html.h"

#include <algorithm>
#include <limits>

#include "KvMarkupEncoding.h"
#include "KvMarkupPreview.h"
#include "KvNumberText.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xhTagSyntax", "xhHeaderCells", "xhReferences",  "xhFoldedSpace",
                                               "xhSpans",     "xhEncoding",    "xhHeaderNames", "xhEmptyIsNull"};
constexpr std::string_view NamesOf1252[] = {"ISO-8859-1", "latin1", "US-ASCII"};
constexpr char MsgNoColumn[] = "%s has no column \"%s\"";

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

} // namespace

TKvImportFromHTML::TKvImportFromHTML(TComponent* Owner) : TKvImportFromMarkup(Owner, teHTML, Extension()) {}

TPublishedProperties TKvImportFromHTML::PublishedProperties() const
{
    using T = TKvImportFromHTML;
    return PublishAfter(TKvImportFromMarkup::PublishedProperties(),
                        {Publish("TableNumber", &T::TableNumber),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromHTML::FillFileFilters()
{
    return TKvImportFromMarkup::FillFileFilters() + "|HTML file (*.htm;*.html)|*.HTM;*.HTML|";
}

// Loading.

TKvFindEncoding TKvImportFromHTML::EncodingFinder() const
{
    return Extensions.Contains(xhEncoding) ? FindHtmlEncoding : nullptr;
}

void TKvImportFromHTML::BeforeImport()
{
    Columns.Clear();
    Header.clear();
    TKvImportFromMarkup::BeforeImport();
    FTablesRead = TableNumber == 0 ? Rows->Tables() : 1;
    if (HasHeader())
        Header = ReadHtmlHeader(TKvHtmlRows(Text(), Extensions, TableNumber));
}

void TKvImportFromHTML::StartRows(std::string_view Text)
{
    Rows.emplace(Text, Extensions, TableNumber);
}

void TKvImportFromHTML::AfterImport()
{
    Rows.reset();
    TKvImportFromMarkup::AfterImport();
}

// The values.

TVariant TKvImportFromHTML::GetFieldValue(const TVariant& Source)
{
    const auto Column = Columns.Find(Source, [this](std::string_view Each) { return ResolveColumn(Each); });
    if (const auto Text = Rows->Text(Column); !Text.empty())
        return TVariant::Borrow(Text);
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
    throw Exception(FormatText(MsgNoColumn, {SourceFileName, Source}));
}

// Automatic mapping.

/// With RowFirst above 1 by the names of the columns, which only the extension reads: without it no field
/// gets a mapping then, as programs know it.
void TKvImportFromHTML::DetectAutoMapping()
{
    BeforeImport();
    MapFields([this](const TField& Field) {
        if (RowFirst <= 1)
            return Extensions.Contains(xhHeaderNames) ? ColumnName(Field.Index()) : Field.FieldName();
        const auto Found = FindHeader(Field.FieldName());
        return Found != Header.end() ? ColumnName(Found - Header.begin()) : std::string();
    });
    AfterImport();
}

// Routines without a component.

std::string_view FindHtmlEncoding(std::string_view Text)
{
    for (const auto Find : {FindWideEncoding, FindXmlEncoding, FindMetaCharset}) {
        const auto Name = Find(Text);
        if (Name.empty())
            continue;
        const auto Means1252 = [Name](std::string_view Each) { return SameText(Name, Each); };
        return std::ranges::any_of(NamesOf1252, Means1252) ? "windows-1252" : Name;
    }
    return {};
}

void LoadHTMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                     std::string_view /*Unused*/, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                     const TPreviewCallback& Callback)
{
    if (FieldNames.empty())
        return;
    const TKvTextFile File(FileName, bmIsText);
    SplitFieldNames(FieldNames, Columns);
    std::vector<std::size_t> Cells;
    for (const auto& Name : Columns)
        Cells.push_back(static_cast<std::size_t>(Columns.IndexOf(Name)));
    TKvHtmlRows Rows(MarkupText(File, FileName, false), {});
    OfferRows(TKvMarkupPreview{Sender, RowFirst, RowLast, Flag, Columns, Callback}, Rows,
              [&](int Column) { return Rows.Text(Cells[static_cast<std::size_t>(Column)]); });
}

} // namespace kv
