#include "KvTextWindow.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "KvCodePage.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t LargestMark = 4;              // the first piece holds all of it

/// What is read of a file that states its size as `Size`, 0 for none.
std::size_t LimitOf(std::size_t Size, std::size_t MaxSize)
{
    return Size == 0 ? MaxSize : std::min(Size, MaxSize);
}

} // namespace

TKvTextWindow::TKvTextWindow(const std::string& FileName, TKvByteOrderMark TheMarks, std::size_t TheMaxSize,
                             std::size_t Piece)
    : File(FileName),
      Marks(TheMarks),
      MaxSize(TheMaxSize),
      PieceSize(std::max(Piece, LargestMark)),
      Limit(LimitOf(File.StatedSize(), MaxSize)),
      KeepsAll(!File.CanRewind()),
      Left(Limit)
{
}

bool TKvTextWindow::MoveOn(std::size_t Done, const std::function<bool()>& Continue)
{
    First += Done;
    return Decodes ? ReadRaw(Continue) : ReadText(Continue);
}

void TKvTextWindow::Rewind()
{
    if (Dropped == 0) {
        First = FMark && !Decodes ? FMark->Bytes.size() : 0;
        return;
    }
    File.Rewind();
    First = Last = 0;
    Left = Limit;
    Dropped = 0;
    FMark = nullptr;
    Raw.clear();
    Decodes = Started = Ended = false;
}

std::int64_t TKvTextWindow::OffsetOf(const char* Place) const
{
    return Decodes ? -1 : static_cast<std::int64_t>(Dropped) + (Place - Bytes.get());
}

/// So that `Count` bytes fit behind the last one.
void TKvTextWindow::MakeRoom(std::size_t Count)
{
    const auto Start = KeepsAll ? 0 : First;
    const auto Size = Last - Start;
    if (Size + Count > Capacity) {
        const auto NewCapacity = std::max(2 * Capacity, Size + Count);
        auto Larger = std::make_unique_for_overwrite<char[]>(NewCapacity);
        if (Size > 0)
            std::memcpy(Larger.get(), Bytes.get() + Start, Size);
        Bytes = std::move(Larger);
        Capacity = NewCapacity;
    } else if (Start > 0 && Size > 0) {
        std::memmove(Bytes.get(), Bytes.get() + Start, Size);
    }
    First -= Start;
    Last = Size;
    Dropped += Start;
}

/// Reads up to `Count` bytes; fewer where the file ends. False when that was stopped.
bool TKvTextWindow::Fill(char* Buffer, std::size_t Count, std::size_t& Filled,
                         const std::function<bool()>& Continue)
{
    Count = std::min(Count, Left);
    for (Filled = 0; Filled < Count && !Ended;) {
        while (Continue && !File.IsReady())
            if (!Continue())
                return false;
        const auto Size = File.Read(Buffer + Filled, std::min(Count - Filled, PieceSize));
        Filled += Size;
        Left -= Size;
        Ended = Size == 0;
        if (Continue && !Continue())
            return false;
    }
    Ended = Ended || Left == 0;
    return true;
}

bool TKvTextWindow::ReadText(const std::function<bool()>& Continue)
{
    // A line that fills half of the window is about to fill it all: what is looked at again must double.
    MakeRoom(std::min(Left, std::max(PieceSize, Capacity / 2)));
    std::size_t Size = 0;
    if (!Fill(Bytes.get() + Last, Capacity - Last, Size, Continue))
        return false;
    Last += Size;
    if (!std::exchange(Started, true))
        TakeMark();
    return true;
}

/// Looks at the first piece.
void TKvTextWindow::TakeMark()
{
    FMark = Marks == bmTellsEncoding ? FindByteOrderMark(Text()) : nullptr;
    if (!FMark)
        return;
    First = FMark->Bytes.size();
    Decodes = !SameText(FMark->CodePage, AnsiCodePage());
    if (!Decodes)
        return;
    Raw = Text();
    First = Last = 0;
    Decode();
}

bool TKvTextWindow::ReadRaw(const std::function<bool()>& Continue)
{
    const auto Old = Raw.size();
    const auto Count = std::min(Left, std::max(PieceSize, Last - First));
    Raw.resize(Old + Count);
    std::size_t Size = 0;
    const bool GoesOn = Fill(Raw.data() + Old, Count, Size, Continue);
    Raw.resize(Old + Size);
    if (GoesOn)
        Decode();
    return GoesOn;
}

void TKvTextWindow::Decode()
{
    const auto Whole = Ended && IsWhole() ? std::string_view(Raw) : FMark->WholeCharacters(Raw);
    const auto Text = DecodeText(File.Name(), Whole, FMark->CodePage);
    MakeRoom(Text.size());
    std::memcpy(Bytes.get() + Last, Text.data(), Text.size());
    Last += Text.size();
    Raw.erase(0, Whole.size());
}

} // namespace kv
