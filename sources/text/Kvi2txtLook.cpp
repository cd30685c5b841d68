// What a text file shows without an import: its first lines, its columns, its delimiter.
#include <algorithm>
#include <cstdint>

#include "KvTextLayout.h"
#include "KvTextLoader.h"
#include "Kvi2txt.h"
#include "Kvi2txtState.h"

namespace kv {

namespace {

constexpr int PreviewRows = 20;
constexpr int PreviewRowFirstMax = 9;               // a later first row may lie beyond PreviewBytes
constexpr std::size_t PreviewBytes = 102400;

/// Holds back the changes of a list for the length of a block.
class TUpdateOf
{
public:
    explicit TUpdateOf(TStrings& TheList) : List(TheList) { List.BeginUpdate(); }
    TUpdateOf(const TUpdateOf&) = delete;
    TUpdateOf& operator=(const TUpdateOf&) = delete;
    ~TUpdateOf() { List.EndUpdate(); }

private:
    TStrings& List;
};

} // namespace

/// One line more than is shown tells whether there are more.
void TKvImportFromText::BeforeLook(const TKvISourceLook& What)
{
    const auto Next = std::int64_t{std::max(RowFirst, 1)} + What.Rows;
    LoadLines({.First = RowFirst,
               .Last = static_cast<int>(std::min<std::int64_t>(Next, RowLast)),
               .Header = What.HeaderRow,
               .Bytes = BytesToLookAt,
               .Grows = true});
}

std::vector<TKvISourceColumn> TKvImportFromText::SourceColumns(int HeaderRow)
{
    if (Fixed)
        return {};
    const auto& Text = State->Text;
    const bool HasTitles = HeaderRow > 0;
    if (!HasTitles && Text.Lines().empty())
        return {};
    State->Fields->Split(HasTitles ? Text.Header() : Text.Lines().front());
    std::vector<TKvISourceColumn> Columns;
    for (std::size_t I = 0; I < State->Fields->Count(); ++I)
        Columns.push_back({.Name = "Field" + std::to_string(I + 1),
                           .Title = HasTitles ? TitleText(ValueAt(I)) : std::string()});
    return Columns;
}

int TKvImportFromText::RecordWidth() const
{
    return Fixed ? -1 : static_cast<int>(State->Fields->Count());
}

void TKvImportFromText::AfterLook()
{
    State->Restart();
    State->Text.Keep();
}

void TKvImportFromText::EndLook()
{
    State->Text.EndKeeping();
}

std::optional<char> TKvImportFromText::FindDelimiter(int HeaderRow, std::string_view Candidates)
{
    if (Fixed || HeaderRow < 1)
        return std::nullopt;
    const auto Found = std::ranges::find_if(Candidates, [&](char Each) { return Delimits(Each, HeaderRow); });
    return Found == Candidates.end() ? std::nullopt : std::optional(*Found);
}

/// True when line `Number` holds more values than one with it. A value that is never closed delimits nothing.
bool TKvImportFromText::Delimits(char Delimiter, int Number)
{
    auto Layout = LayoutOf(*this);
    Layout.Delimiter = Delimiter;
    auto Fields = Layout.FieldCutter();
    auto& Text = State->Text;
    Text.Load(SourceFileName, Layout, {.Header = Number, .Bytes = BytesToLookAt, .Grows = true},
              [this] { return KeepsRunning(); });
    Fields.Split(Text.Header());
    const bool Result = Text.IsClosed() && Fields.Count() > 1;
    Text.Keep();
    return Result;
}

std::vector<TKvISourceRemark> TKvImportFromText::SourceRemarks() const
{
    const bool HasHeader = HeaderLine > 0;
    const auto& Counts = FFieldCounts;
    std::vector<TKvISourceRemark> Remarks;
    const auto Add = [&](TKvISourceRemarkKind Kind, int Count, int First) {
        if (Count > 0)
            Remarks.push_back({.Kind = Kind,
                               .Count = Count,
                               .First = First,
                               .Limit = HasHeader ? HeaderLine : std::max(RowFirst, 1),
                               .HasHeader = HasHeader});
    };
    Add(srMoreValues, Counts.MoreLines, Counts.FirstMore);
    Add(srFewerValues, Counts.FewerLines, Counts.FirstFewer);
    return Remarks;
}

// Without a component.

void LoadTextFile(bool IsPreview, std::string& FirstLine, TStrings& Lines, const std::string& FileName,
                  std::string_view RecordSeparator, std::string_view TextQualifier, int RowFirst, int RowLast,
                  TKvITextExtensions Extensions, char FieldDelimiter)
{
    const TUpdateOf Update(Lines);
    Lines.Clear();
    FirstLine.clear();
    const bool HasQualifier = TextQualifier.size() == 1;
    const TKvTextLayout Layout{.Delimiter = FieldDelimiter,
                               .Qualifier = HasQualifier ? std::optional(TextQualifier[0]) : std::nullopt,
                               .Separator = RecordSeparator,
                               .Extensions = Extensions};
    const bool ReadsStart = IsPreview && RowFirst <= PreviewRowFirstMax;
    TKvTextLoader Text;
    Text.Load(FileName, Layout,
              {.First = RowFirst,
               .Last = IsPreview ? std::min(RowLast, PreviewRows) : RowLast,
               .Bytes = ReadsStart ? PreviewBytes : TKvTextFile::WholeFile},
              {});
    Text.RequireClosed();
    FirstLine = Text.Header();
    for (const auto Line : Text.Lines())
        Lines.Add(Line);
}

} // namespace kv
