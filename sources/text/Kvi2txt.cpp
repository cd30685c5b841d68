#include "Kvi2txt.h"

#include <algorithm>

#include "KvNumberText.h"
#include "KvPublish.h"
#include "KvTextLayout.h"
#include "KvTextLoader.h"
#include "Kvi2txtLine.h"
#include "Kvi2txtState.h"

namespace kv {

namespace {

constexpr std::string_view FieldDelimiterNames[] = {"fdNone",  "fdCustom", "fdTab", "fdSemicolon",
                                                    "fdComma", "fdSpace"};
constexpr std::string_view TextQualifierNames[] = {"tqNone", "tqCustom", "tqQuot", "tqApos"};
constexpr std::string_view RecordSeparatorNames[] = {"rsCustom", "rsCRLF", "rsCR", "rsLF"};
constexpr std::string_view ExtensionNames[] = {"xtDoubledQualifiers", "xtLongLines", "xtByteOrderMark",
                                               "xtFixedPadding"};

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
    State->Restart();
    const auto Layout = LayoutOf(*this);
    State->Text.Load(SourceFileName, Layout, Wanted, [this] { return KeepsRunning(); });
    State->Text.RequireClosed();
    if (!Fixed)
        State->Fields.emplace(Layout.FieldCutter());
}

/// A header among the lines that are imported is none.
std::string_view TKvImportFromText::LineToCompare() const
{
    const auto& Text = State->Text;
    if (HeaderLine == 0)
        return Text.Lines().empty() ? std::string_view() : Text.Lines().front();
    return HeaderLine < RowFirst ? Text.Header() : std::string_view();
}

// The records.

std::size_t TKvImportFromText::LineNumber() const
{
    return static_cast<std::size_t>(std::max(RowFirst, 1)) + State->CurrentRow;
}

TKvISourcePosition TKvImportFromText::SourcePosition() const
{
    if (!State->HasRecord())
        return {.Unit = PositionUnit()};
    return {.Unit = PositionUnit(),
            .Number = static_cast<std::int64_t>(LineNumber()),
            .Offset = State->Text.OffsetOf(State->Line())};
}

TVariant TKvImportFromText::SourceRecord()
{
    return State->HasRecord() ? TVariant(State->Line()) : TVariant(Null);
}

int TKvImportFromText::GetTotalCount()
{
    return static_cast<int>(std::min(State->Text.Lines().size(), static_cast<std::size_t>(RowLastMax)));
}

void TKvImportFromText::GoFirst()
{
    State->CurrentRow = 0;
}

void TKvImportFromText::GoNext()
{
    ++State->CurrentRow;
}

bool TKvImportFromText::NeedMore()
{
    return State->HasRecord() && WantsMoreThan(static_cast<std::int64_t>(State->CurrentRow));
}

bool TKvImportFromText::LoadRecord()
{
    auto& S = *State;
    S.CurrentLine = S.Line();
    if (S.Fields) {
        CheckLength(S.CurrentLine, LineNumber());
        S.Fields->Split(S.CurrentLine);
        if (S.ComparedFields > 0 && S.Fields->Count() != S.ComparedFields)
            CountFields();
    }
    return TKvImportFromFile::LoadRecord();
}

void TKvImportFromText::CheckLength(std::string_view Line, std::size_t Number) const
{
    if (Line.size() > MaxLineSize && !Extensions.Contains(xtLongLines))
        throw Exception(
            FileAndLine(SourceFileName, Number) + MsgLineTooLong,
            {.FileName = SourceFileName, .Place = "line " + std::to_string(Number), .Rule = erLength});
}

/// For a line that holds not as many values as the one to compare with.
void TKvImportFromText::CountFields()
{
    auto& Counts = FFieldCounts;
    const bool Fewer = State->Fields->Count() < State->ComparedFields;
    if (++(Fewer ? Counts.FewerLines : Counts.MoreLines) == 1)
        (Fewer ? Counts.FirstFewer : Counts.FirstMore) = static_cast<int>(LineNumber());
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
        return BytesAt(Column);
    return Column.NamesField ? std::string_view() : WithoutDelimiter(Source);
}

std::string_view TKvImportFromText::BytesAt(const TColumn& Column) const
{
    const auto Bytes = WithoutDelimiter(Slice(State->CurrentLine, Column.First, Column.Last));
    return Extensions.Contains(xtFixedPadding) ? Bytes.substr(0, Bytes.find_last_not_of(' ') + 1) : Bytes;
}

} // namespace kv
