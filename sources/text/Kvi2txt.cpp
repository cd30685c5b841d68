#include "Kvi2txt.h"

#include <algorithm>

#include "KvCodePage.h"
#include "KvNumberText.h"
#include "KvPublish.h"
#include "KvTextLayout.h"
#include "KvTextRecords.h"
#include "KvUtf8.h"
#include "Kvi2txtLine.h"
#include "Kvi2txtState.h"

namespace kv {

namespace {

constexpr std::string_view FieldDelimiterNames[] = {"fdNone",  "fdCustom", "fdTab", "fdSemicolon",
                                                    "fdComma", "fdSpace"};
constexpr std::string_view TextQualifierNames[] = {"tqNone", "tqCustom", "tqQuot", "tqApos"};
constexpr std::string_view RecordSeparatorNames[] = {"rsCustom", "rsCRLF", "rsCR", "rsLF"};
constexpr std::string_view UnitNames[] = {"tuBytes", "tuCharacters"};
constexpr std::string_view ExtensionNames[] = {"xtDoubledQualifiers", "xtLongLines",
                                               "xtByteOrderMark",     "xtFixedPadding",
                                               "xtWholeSeparator",    "xtDelimiterLine",
                                               "xtEndOfFileMark"};

constexpr std::string_view TextPrefix = "Text";
constexpr std::string_view FieldPrefix = "Field";

/// The positive number that `Text` is, else 0.
std::size_t PositionOf(std::string_view Text)
{
    return static_cast<std::size_t>(std::max<std::int64_t>(TryTextToInt(Text).value_or(0), 0));
}

} // namespace

TKvImportFromText::TKvImportFromText(TComponent* Owner)
    : TKvImportFromFile(Owner, teText, Extension()),
      State(std::make_unique<TState>())
{
}

TKvImportFromText::~TKvImportFromText() = default;

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
        AsPlace(Publish("FixedUnit", &T::FixedUnit, UnitNames)),
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
    FFieldCounts = {};
    LoadLines({.First = RowFirst, .Last = RowLast, .Header = HeaderLine});
    if (!State->Fields)
        return;
    State->Fields->Split(LineToCompare());
    State->ComparedFields = State->Fields->Count();
}

void TKvImportFromText::AfterImport()
{
    State->Restart();
    State->Text.Close();
}

void TKvImportFromText::LoadLines(const TKvWantedLines& Wanted)
{
    auto& S = *State;
    S.Restart();
    S.WideLines = S.FirstWide = 0;
    S.Delimiter = GetFieldDelimiterCustom();
    S.Text.Load(SourceFileName, LayoutOf(*this), Wanted, [this] { return KeepsRunning(); });
    S.Text.RequireClosed();
    S.Delimiter = S.Text.Delimiter();
    S.EmptyLines = S.Text.EmptyLines();
    if (!Fixed)
        S.Fields.emplace(S.Text.FieldCutter());
    else if (AnsiIsUtf8() && (FixedUnit == tuCharacters || S.Text.IsUtf16()))
        S.Characters.emplace();
}

bool TKvImportFromText::IsOemText() const
{
    return TKvImportFromFile::IsOemText() && !State->Text.TellsEncoding();
}

/// A header among the lines that are imported is none.
std::string_view TKvImportFromText::LineToCompare() const
{
    auto& Text = State->Text;
    if (HeaderLine == 0) {
        Text.GoFirst();
        return Text.HasRecord() ? Text.Line() : std::string_view();
    }
    return HeaderLine < RowFirst ? std::string_view(Text.Header()) : std::string_view();
}

// The records.

TKvISourcePosition TKvImportFromText::SourcePosition() const
{
    const auto& Text = State->Text;
    if (!Text.HasRecord())
        return {.Unit = PositionUnit()};
    return {.Unit = PositionUnit(),
            .Number = static_cast<std::int64_t>(Text.Number()),
            .Offset = Text.Offset(),
            .FileLine = static_cast<std::int64_t>(Text.PlainNumber())};
}

TVariant TKvImportFromText::SourceRecord()
{
    return State->Text.HasRecord() ? TVariant(State->Text.Line()) : TVariant(Null);
}

int TKvImportFromText::GetTotalCount()
{
    return static_cast<int>(std::min(State->Text.Count(), static_cast<std::size_t>(RowLastMax)));
}

void TKvImportFromText::GoFirst()
{
    State->Text.GoFirst();
}

void TKvImportFromText::GoNext()
{
    State->Text.GoNext();
}

bool TKvImportFromText::NeedMore()
{
    return State->Text.HasRecord() && WantsMoreThan(static_cast<std::int64_t>(State->Text.Index()));
}

bool TKvImportFromText::LoadRecord()
{
    auto& S = *State;
    S.CurrentLine = S.Text.Line();
    if (S.Fields) {
        CheckLength(S.CurrentLine, S.Text.Number(), S.Text.PlainNumber());
        S.Fields->Split(S.CurrentLine);
        if (S.ComparedFields > 0 && S.Fields->Count() != S.ComparedFields)
            CountFields();
    }
    else {
        LoadCharacters();
    }
    return TKvImportFromFile::LoadRecord();
}

void TKvImportFromText::CheckLength(std::string_view Line, std::size_t Number, std::size_t PlainNumber) const
{
    if (Line.size() > MaxLineSize && !Extensions.Contains(xtLongLines))
        throw Exception(
            FileAndLine(SourceFileName, Number, PlainNumber) + MsgLineTooLong,
            {.FileName = SourceFileName, .Place = LinePlace(Number, PlainNumber), .Rule = erLength});
}

/// Of a fixed line, which by the columns' bounds is cut elsewhere than its maker meant when they are wide.
void TKvImportFromText::LoadCharacters()
{
    auto& S = *State;
    if (S.Characters)
        return S.Characters->Split(S.CurrentLine);
    if (IsAscii(S.CurrentLine) || !AnsiIsUtf8() || IsOemText() || !IsValidUtf8(S.CurrentLine))
        return;
    if (++S.WideLines == 1)
        S.FirstWide = static_cast<std::int64_t>(S.Text.Number());
}

/// For a line that holds not as many values as the one to compare with.
void TKvImportFromText::CountFields()
{
    auto& Counts = FFieldCounts;
    const bool Fewer = State->Fields->Count() < State->ComparedFields;
    if (++(Fewer ? Counts.FewerLines : Counts.MoreLines) == 1)
        (Fewer ? Counts.FirstFewer : Counts.FirstMore) = static_cast<int>(State->Text.Number());
}

// The values.

TVariant TKvImportFromText::GetFieldValue(const TVariant& Source)
{
    const auto& Column = State->Columns.Find(Source, Fixed ? TColumn::OfFixed : TColumn::OfDelimited);
    return TVariant::Borrow(TextOf(Column, Source.Text()));
}

/// Any five characters stand before the number of a value, any four before a position: only a name
/// without one is a constant.
TKvImportFromText::TColumn TKvImportFromText::TColumn::OfDelimited(std::string_view Source)
{
    TColumn Column{.NamesField = Source.starts_with(FieldPrefix)};
    if (Source.size() > FieldPrefix.size())
        Column.First = PositionOf(Source.substr(FieldPrefix.size()));
    return Column;
}

TKvImportFromText::TColumn TKvImportFromText::TColumn::OfFixed(std::string_view Source)
{
    TColumn Column{.NamesField = Source.starts_with(FieldPrefix)};
    const auto Dash = Source.find('-');
    if (Dash == Source.npos || Dash < TextPrefix.size())
        return Column;
    Column.First = PositionOf(Source.substr(TextPrefix.size(), Dash - TextPrefix.size()));
    Column.Last = PositionOf(Source.substr(Dash + 1));
    return Column;
}

std::string_view TKvImportFromText::TextOf(const TColumn& Column, std::string_view Source) const
{
    if (!Fixed && Column.First - 1 < State->Fields->Count()) // for no position the highest of all numbers
        return ValueAt(Column.First - 1);
    if (Fixed && Column.First > 0)
        return TextAt(Column);
    return Column.NamesField ? std::string_view() : WithoutDelimiter(Source);
}

std::string_view TKvImportFromText::TextAt(const TColumn& Column) const
{
    const auto& S = *State;
    const auto Text = WithoutDelimiter(S.Characters ? S.Characters->Slice(Column.First, Column.Last)
                                                    : Slice(S.CurrentLine, Column.First, Column.Last));
    return Extensions.Contains(xtFixedPadding) ? Text.substr(0, Text.find_last_not_of(' ') + 1) : Text;
}

} // namespace kv
