// What a text file shows without an import: its first lines, its columns, its delimiter.
#include <algorithm>
#include <cstdint>

#include "KvTextLayout.h"
#include "KvTextRecords.h"
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
    LoadLines({.First = RowFirst,
               .Last = RowLast,
               .Header = What.HeaderRow,
               .MaxCount = std::int64_t{What.Rows} + 1});
}

std::vector<TKvISourceColumn> TKvImportFromText::SourceColumns(int HeaderRow)
{
    if (Fixed)
        return {};
    auto& Text = State->Text;
    const bool HasTitles = HeaderRow > 0;
    Text.GoFirst();
    if (!HasTitles && !Text.HasRecord())
        return {};
    State->Fields->Split(HasTitles ? std::string_view(Text.Header()) : Text.Line());
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
    for (const char Each : Candidates)
        if (const auto Found = FindDelimiter(HeaderRow, Each))
            return Found;
    return std::nullopt;
}

/// `Candidate` when line `Number` holds more values than one with it; a value that is never closed delimits
/// nothing.
std::optional<char> TKvImportFromText::FindDelimiter(int Number, char Candidate)
{
    auto Layout = LayoutOf(*this);
    Layout.Delimiter = Candidate;
    auto& Text = State->Text;
    Text.Load(SourceFileName, Layout, {.Header = Number}, [this] { return KeepsRunning(); });
    auto Fields = Text.FieldCutter();
    Fields.Split(Text.Header());
    const bool IsFound = Text.NamesDelimiter() || (Text.IsClosed() && Fields.Count() > 1);
    const auto Result = IsFound ? std::optional(Text.Delimiter()) : std::nullopt;
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
    const auto& S = *State;
    if (S.EmptyLines.Count > 0)
        Remarks.push_back({.Kind = srEmptyRows, .Count = S.EmptyLines.Count, .First = S.EmptyLines.First});
    if (S.WideLines > 0)
        Remarks.push_back({.Kind = srWideCharacters, .Count = S.WideLines, .First = S.FirstWide});
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
    TKvTextRecords Text;
    Text.Load(FileName, Layout,
              {.First = RowFirst,
               .Last = IsPreview ? std::min(RowLast, PreviewRows) : RowLast,
               .Bytes = ReadsStart ? PreviewBytes : TKvTextFile::WholeFile},
              {});
    Text.RequireClosed();
    FirstLine = Text.Header();
    for (Text.GoFirst(); Text.HasRecord(); Text.GoNext())
        Lines.Add(Text.Line());
}

} // namespace kv
