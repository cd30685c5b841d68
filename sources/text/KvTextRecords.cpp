#include "KvTextRecords.h"

#include <algorithm>
#include <new>
#include <utility>

#include "KvException.h"
#include "KvText.h"
#include "Kvi2txtLine.h"

namespace kv {

namespace {

constexpr char EndOfFileMark = '\x1A';
constexpr std::string_view DelimiterPrefix = "sep=";

constexpr char MsgUnclosed[] = "begins a value that no text qualifier closes";
constexpr char MsgNoMemory[] = "does not fit into memory";
constexpr char MsgChanged[] = "File \"%s\" has changed while it was read";

} // namespace

// Loading.

void TKvTextRecords::Load(const std::string& Name, const TKvTextLayout& TheLayout,
                          const TKvWantedLines& TheWanted, const std::function<bool()>& TheContinue)
{
    Forget();
    Open(Name, TheLayout, TheWanted.Bytes);
    Wanted = TheWanted;
    Continue = TheContinue;
    Rewind();
    SkipDelimiterLine();
    CountRecords();
    Continue = {};
}

void TKvTextRecords::Open(const std::string& Name, const TKvTextLayout& TheLayout, std::size_t Size)
{
    const bool IsThis = std::exchange(IsKept, false) && FileName == Name && FileSize == Size &&
                        Layout.Mark() == TheLayout.Mark();
    Layout = TheLayout;
    Separator = TheLayout.Separator;
    Layout.Separator = Separator;
    if (IsThis)
        return;
    Close();
    Window.emplace(Name, Layout.Mark(), Size, Piece);
    FileName = Name;
    FileSize = Size;
}

/// Before the first line.
void TKvTextRecords::Rewind()
{
    Window->Rewind();
    Lines.emplace(Layout.LineCutter());
    if (Window->Text().empty() && !Window->IsLast())
        SeeMore();
    Lines->GoOnIn(Seen(), Window->IsLast());
    for (std::size_t I = 0; I < SkippedLines; ++I)
        NextLine();
}

std::string_view TKvTextRecords::Seen() const
{
    auto Text = Window->Text();
    if (Window->IsLast() && Layout.Extensions.Contains(xtEndOfFileMark))
        Text = Text.substr(0, Text.find_last_not_of(EndOfFileMark) + 1);
    return Text;
}

void TKvTextRecords::SkipDelimiterLine()
{
    if (Layout.Fixed || !Layout.Extensions.Contains(xtDelimiterLine))
        return;
    const auto First = NextLine() ? Line() : std::string_view();
    if (First.size() == DelimiterPrefix.size() + 1 &&
        SameText(First.substr(0, DelimiterPrefix.size()), DelimiterPrefix)) {
        Layout.Delimiter = First.back();
        SkippedLines = 1;
    }
    Rewind();
}

void TKvTextRecords::CountRecords()
{
    const std::int64_t Until = std::max(Wanted.Last, Wanted.Header);
    for (std::int64_t Row = 1; Row <= Until; ++Row) {
        const bool HasAll = std::cmp_greater_equal(FCount, Wanted.MaxCount) && Row > Wanted.Header;
        if (HasAll || !NextLine())
            break;
        if (Row == Wanted.Header)
            FHeader = Line();
        if (Row < Wanted.First || Row > Wanted.Last)
            continue;
        if (Layout.IsEmptyRecord(Line()))
            CountEmptyLine();
        else
            ++FCount;
    }
    if (Lines->Unclosed() && Window->IsWhole()) {
        Unclosed = Number();
        PlainUnclosed = PlainNumber();
    }
    if (WasStopped)
        Forget();
}

void TKvTextRecords::CountEmptyLine()
{
    if (++FEmptyLines.Count == 1)
        FEmptyLines.First = static_cast<std::int64_t>(Number());
}

void TKvTextRecords::RequireClosed() const
{
    if (!IsClosed())
        throw Exception(
            FileAndLine(FileName, Unclosed, PlainUnclosed) + MsgUnclosed,
            {.FileName = FileName, .Place = LinePlace(Unclosed, PlainUnclosed), .Rule = erFormat});
}

bool TKvTextRecords::IsUtf16() const
{
    return TellsEncoding() && Window->Mark()->CodePage.starts_with("UTF-16");
}

// One record after the other.

void TKvTextRecords::GoFirst()
{
    FIndex = 0;
    FHasRecord = FCount > 0;
    if (!FHasRecord)
        return;
    Rewind();
    Advance();
}

void TKvTextRecords::GoNext()
{
    FHasRecord = ++FIndex < FCount;
    if (FHasRecord)
        Advance();
}

/// To a record that was counted.
void TKvTextRecords::Advance()
{
    do
        if (!NextLine())
            throw EFileError(FormatText(MsgChanged, {FileName}), {.FileName = FileName, .Rule = erStorage});
    while (std::cmp_less(Number(), Wanted.First) || Layout.IsEmptyRecord(Line()));
}

bool TKvTextRecords::NextLine()
{
    while (!Lines->Next()) {
        if (WasStopped || Window->IsLast() || !SeeMore())
            return false;
        Lines->GoOnIn(Seen(), Window->IsLast());
    }
    return true;
}

/// Moves the window on. False when that was stopped.
bool TKvTextRecords::SeeMore()
{
    const auto Rest = Lines->Rest().size();
    const auto Next = Number() + 1, PlainNext = PlainNumber() + 1;
    const auto Refuse = [&](const char* Reason) {
        throw EFileError(FileAndLine(FileName, Next, PlainNext) + Reason,
                         {.FileName = FileName, .Place = LinePlace(Next, PlainNext), .Rule = erStorage});
    };
    if (Rest > TKvTextFields::MaxLineSize)
        Refuse(MsgNoMemory);
    try {
        WasStopped = !Window->MoveOn(Window->Text().size() - Rest, Continue);
    }
    catch (const std::bad_alloc&) {
        Refuse(MsgNoMemory);
    }
    return !WasStopped;
}

// Keeping.

void TKvTextRecords::Forget()
{
    SkippedLines = 0;
    FCount = FIndex = 0;
    FHasRecord = false;
    FHeader = {};
    FEmptyLines = {};
    Unclosed = PlainUnclosed = 0;
}

void TKvTextRecords::Keep()
{
    Forget();
    IsKept = Window && !WasStopped;
}

void TKvTextRecords::EndKeeping()
{
    if (IsKept)
        Close();
}

void TKvTextRecords::Close()
{
    Forget();
    Lines.reset();
    Window.reset();
    IsKept = WasStopped = false;
}

} // namespace kv
