#include "Kvi2txt.h"

#include <algorithm>

#include "KvNumberText.h"
#include "KvPublish.h"
#include "Kvi2txtLine.h"

namespace kv {

namespace {

constexpr std::string_view FieldDelimiterNames[] = {"fdNone",  "fdCustom", "fdTab", "fdSemicolon",
                                                    "fdComma", "fdSpace"};
constexpr std::string_view TextQualifierNames[] = {"tqNone", "tqCustom", "tqQuot", "tqApos"};
constexpr std::string_view RecordSeparatorNames[] = {"rsCustom", "rsCRLF", "rsCR", "rsLF"};
constexpr std::string_view ExtensionNames[] = {"xtDoubledQualifiers", "xtLongLines", "xtByteOrderMark",
                                               "xtFixedPadding"};

constexpr char MsgUnclosed[] = "begins a value that no text qualifier closes";

constexpr std::size_t HeaderBytes = 64 << 10;       // hold line 1 of most files
constexpr std::size_t PreviewBytes = 102400;
constexpr int PreviewRows = 20;
constexpr int PreviewRowFirstMax = 9;               // a later first row may lie beyond PreviewBytes
constexpr std::size_t PollBytes = 4 << 20;          // between two looks at the Cancel button

constexpr std::string_view TextPrefix = "Text";
constexpr std::string_view FieldPrefix = "Field";

/// The positive number that `Text` is, else 0.
std::size_t PositionOf(std::string_view Text)
{
    return static_cast<std::size_t>(std::max<std::int64_t>(TryTextToInt(Text).value_or(0), 0));
}

std::string FileAndLine(const std::string& FileName, std::size_t Number)
{
    return "Line " + std::to_string(Number) + " of " + FileName + " ";
}

/// How many lines to make room for, going by the start of the text. An index that grows from nothing to
/// millions of lines copies itself over and over; a wrong guess costs no more room than the text takes.
std::size_t EstimateLines(std::string_view Text, std::string_view Separator)
{
    constexpr std::size_t SampleBytes = 64 << 10;
    const auto Sample = Text.substr(0, SampleBytes);
    if (Sample.empty() || Separator.empty())
        return 0;
    const auto InSample = static_cast<std::size_t>(std::ranges::count(Sample, Separator.back())) + 1;
    const auto Samples = Text.size() / Sample.size() + 1;
    return std::min(InSample * Samples, Text.size() / sizeof(std::string_view));
}

/// Gives number and text of each line up to `LastLine`, and of line 1, to `Take`. `Continue`, when given, is
/// asked every few megabytes; false ends it with answer false.
template <class TTake>
bool CutLines(TKvTextLines& Lines, int LastLine, const std::function<bool()>& Continue, TTake Take)
{
    std::size_t NextPoll = PollBytes;
    for (std::int64_t Number = 1; Number <= std::max(LastLine, 1) && Lines.Next(); ++Number) {
        Take(Number, Lines.Line());
        if (Lines.Offset() < NextPoll)
            continue;
        NextPoll = Lines.Offset() + PollBytes;
        if (Continue && !Continue())
            return false;
    }
    return true;
}

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

TKvImportFromText::TKvImportFromText(TComponent* Owner) : TKvImportFromFile(Owner, teText, Extension()) {}

TPublishedProperties TKvImportFromText::PublishedProperties() const
{
    using T = TKvImportFromText;
    return PublishAfter(TKvImportFromFile::PublishedProperties(), {
        Publish("Fixed", &T::Fixed),
        Publish<T>("FieldDelimiter", &T::GetFieldDelimiter, &T::SetFieldDelimiter, FieldDelimiterNames),
        Publish<T>("FieldDelimiterCustom", &T::GetFieldDelimiterCustom, &T::SetFieldDelimiterCustom),
        Publish<T>("TextQualifier", &T::GetTextQualifier, &T::SetTextQualifier, TextQualifierNames),
        Publish<T>("TextQualifierCustom", &T::GetTextQualifierCustom, &T::SetTextQualifierCustom),
        Publish<T>("RecordSeparator", &T::GetRecordSeparator, &T::SetRecordSeparator, RecordSeparatorNames),
        Publish<T>("RecordSeparatorCustom", &T::GetRecordSeparatorCustom, &T::SetRecordSeparatorCustom),
        Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromText::FillFileFilters()
{
    return TKvImportFromFile::FillFileFilters() +
           "|Text file (*.txt)|*.TXT|Comma-delimited file (*.csv)|*.CSV|Data file (*.dat)|*.DAT|"
           "Text file (*.prn)|*.PRN|Tabular file (*.tab)|*.TAB|ASCII file (*.asc)|*.ASC|";
}

// Loading.

void TKvImportFromText::BeforeImport()
{
    Load(RowLast, TKvTextFile::WholeFile);
}

void TKvImportFromText::AfterImport()
{
    Unload();
}

void TKvImportFromText::Unload()
{
    FieldPositions.reset();
    Lines = {};
    CurrentLine = FirstLine = Header = {};
    File.reset();
}

void TKvImportFromText::Load(int LastLine, std::size_t MaxSize)
{
    Unload();                                       // a run that an exception ended left its lines behind
    Columns.Clear();
    CurrentRow = 0;
    ComparedFields = 0;
    FFieldCounts = {};
    const auto Mark = Extensions.Contains(xtByteOrderMark) ? bmTellsEncoding : bmIsText;
    File.emplace(SourceFileName, Mark, MaxSize, [this] { return KeepsRunning(); });
    LoadLines(LastLine);
    if (Fixed)
        return;
    FieldPositions.emplace(FieldCutter());
    FieldPositions->Split(LineToCompare());
    ComparedFields = FieldPositions->Count();
}

/// A header among the lines that are imported is none.
std::string_view TKvImportFromText::LineToCompare() const
{
    if (HeaderLine == 0)
        return Lines.empty() ? std::string_view() : Lines.front();
    return HeaderLine < RowFirst ? Header : std::string_view();
}

/// For automatic mapping line 1 is enough: the run that follows reads the file anyway.
void TKvImportFromText::LoadFirstLine()
{
    Load(1, HeaderBytes);
    const bool MayGoOn = FirstLine.data() + FirstLine.size() == File->Text().data() + File->Text().size();
    if (MayGoOn && !File->IsWhole())
        Load(1, TKvTextFile::WholeFile);
}

TKvTextLines TKvImportFromText::LineCutter(std::string_view Text) const
{
    const char Qualifier = GetTextQualifierCustom();
    const bool Doubled = Extensions.Contains(xtDoubledQualifiers);
    TKvTextLineRules Rules{.Separator = GetRecordSeparatorCustom(),
                           .Qualifier = {&Qualifier, 1}, // #0 too: the zero byte then hides line ends
                           .DoubledQualifiers = Doubled,
                           .Delimiter = GetFieldDelimiterCustom()};
    if (Doubled && (Fixed || Qualifier == '\0'))
        Rules.Qualifier = {};
    return TKvTextLines(Text, Rules);
}

TKvTextFields TKvImportFromText::FieldCutter() const
{
    return TKvTextFields(GetFieldDelimiterCustom(), GetTextQualifierCustom(), Extensions.Contains(xtDoubledQualifiers));
}

void TKvImportFromText::LoadLines(int LastLine)
{
    auto Cutter = LineCutter(File->Text());
    if (LastLine == RowLastMax)
        Lines.reserve(EstimateLines(File->Text(), GetRecordSeparatorCustom()));
    const bool Complete = CutLines(Cutter, LastLine, [this] { return KeepsRunning(); },
                                   [this, LastLine](std::int64_t Number, std::string_view Line) {
                                       if (Number == 1)
                                           FirstLine = Line;
                                       if (Number == HeaderLine)
                                           Header = Line;
                                       if (RowFirst <= Number && Number <= LastLine)
                                           Lines.push_back(Line);
                                   });
    if (!Complete)
        Lines.clear();                              // cancelled: nothing of the file is imported
    else if (Cutter.Unclosed() && File->IsWhole())
        throw Exception(FileAndLine(SourceFileName, Cutter.Number()) + MsgUnclosed);
}

// The records.

std::size_t TKvImportFromText::LineNumber() const
{
    return static_cast<std::size_t>(std::max(RowFirst, 1)) + CurrentRow;
}

TKvISourcePosition TKvImportFromText::SourcePosition() const
{
    return {.Unit = PositionUnit(), .Number = static_cast<std::int64_t>(LineNumber())};
}

int TKvImportFromText::GetTotalCount()
{
    return static_cast<int>(std::min(Lines.size(), static_cast<std::size_t>(RowLastMax)));
}

bool TKvImportFromText::NeedMore()
{
    return CurrentRow < Lines.size() && WantsMoreThan(static_cast<std::int64_t>(CurrentRow));
}

bool TKvImportFromText::LoadRecord()
{
    CurrentLine = Lines[CurrentRow];
    if (FieldPositions) {
        CheckLength(CurrentLine, LineNumber());
        FieldPositions->Split(CurrentLine);
        if (ComparedFields > 0 && FieldPositions->Count() != ComparedFields)
            CountFields();
    }
    return TKvImportFromFile::LoadRecord();
}

void TKvImportFromText::CheckLength(std::string_view Line, std::size_t Number) const
{
    if (Line.size() > MaxLineSize && !Extensions.Contains(xtLongLines))
        throw Exception(FileAndLine(SourceFileName, Number) + MsgLineTooLong);
}

/// For a line that holds not as many values as the one to compare with.
void TKvImportFromText::CountFields()
{
    auto& Counts = FFieldCounts;
    const bool Fewer = FieldPositions->Count() < ComparedFields;
    if (++(Fewer ? Counts.FewerLines : Counts.MoreLines) == 1)
        (Fewer ? Counts.FirstFewer : Counts.FirstMore) = static_cast<int>(LineNumber());
}

// The values.

TVariant TKvImportFromText::GetFieldValue(const TVariant& Source)
{
    const auto& Column = Columns.Find(
        Source, [this](std::string_view Each) { return Fixed ? ResolveFixed(Each) : ResolveDelimited(Each); });
    return TVariant::Borrow(TextOf(Column, Source.Text()));
}

/// Any five characters stand before the number of a value, any four before a position: only a name
/// without one is a constant.
TKvImportFromText::TColumn TKvImportFromText::ResolveDelimited(std::string_view Source)
{
    TColumn Column{.NamesField = Source.starts_with(FieldPrefix)};
    if (Source.size() > FieldPrefix.size())
        Column.First = PositionOf(Source.substr(FieldPrefix.size()));
    return Column;
}

TKvImportFromText::TColumn TKvImportFromText::ResolveFixed(std::string_view Source)
{
    TColumn Column{.NamesField = Source.starts_with(FieldPrefix)};
    const auto Dash = Source.find('-');
    if (Dash == Source.npos || Dash < TextPrefix.size())
        return Column;
    Column.First = PositionOf(Source.substr(TextPrefix.size(), Dash - TextPrefix.size()));
    Column.Last = PositionOf(Source.substr(Dash + 1));
    return Column;
}

std::string_view TKvImportFromText::TextOf(const TColumn& Column, std::string_view Source)
{
    const bool InLine = Column.First > 0 && (Fixed || Column.First <= FieldPositions->Count());
    if (!InLine)
        return Column.NamesField ? std::string_view() : WithoutDelimiter(Source);
    if (Fixed) {
        const auto Bytes = WithoutDelimiter(Slice(CurrentLine, Column.First, Column.Last));
        return Extensions.Contains(xtFixedPadding) ? Bytes.substr(0, Bytes.find_last_not_of(' ') + 1) : Bytes;
    }
    const auto Value = FieldPositions->Value(Column.First - 1);
    return Extensions.Contains(xtDoubledQualifiers) ? Value : WithoutDelimiter(Value);
}

std::string_view TKvImportFromText::WithoutDelimiter(std::string_view Value) const
{
    if (!Value.empty() && Value.back() == GetFieldDelimiterCustom())
        Value.remove_suffix(1);
    return Value;
}

// Without a component.

void LoadTextFile(bool IsPreview, std::string& FirstLine, TStrings& Lines, const std::string& FileName,
                  std::string_view RecordSeparator, std::string_view TextQualifier, int RowFirst, int RowLast)
{
    const TUpdateOf Update(Lines);
    Lines.Clear();
    FirstLine.clear();
    const bool ReadsStart = IsPreview && RowFirst <= PreviewRowFirstMax;
    const TKvTextFile File(FileName, bmIsText, ReadsStart ? PreviewBytes : TKvTextFile::WholeFile);
    TKvTextLines Cutter(File.Text(), {.Separator = RecordSeparator, .Qualifier = TextQualifier});
    const int LastLine = IsPreview ? std::min(RowLast, PreviewRows) : RowLast;
    CutLines(Cutter, LastLine, {}, [&](std::int64_t Number, std::string_view Line) {
        if (Number == 1)
            FirstLine = Line;
        if (RowFirst <= Number && Number <= LastLine)
            Lines.Add(Line);
    });
}

} // namespace kv
