#include "KvTextLoader.h"

#include <algorithm>

#include "KvException.h"
#include "Kvi2txtLine.h"
#include "KviTypes.h"

namespace kv {

namespace {

constexpr std::size_t PollBytes = std::size_t{4} << 20; // between two looks at the Cancel button
constexpr std::size_t Growth = 16;                  // of a part that does not hold the lines

constexpr char MsgUnclosed[] = "begins a value that no text qualifier closes";

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

std::size_t LargerThan(std::size_t Size)
{
    return Size > TKvTextFile::WholeFile / Growth ? TKvTextFile::WholeFile : Growth * Size;
}

} // namespace

void TKvTextLoader::Load(const std::string& Name, const TKvTextLayout& Layout, const TKvWantedLines& Wanted,
                         const std::function<bool()>& Continue)
{
    ForgetLines();
    auto Size = Wanted.Bytes;
    Open(Name, Layout.Mark(), Size, Continue);
    while (!Cut(Layout, Wanted, Continue) && Wanted.Grows) {
        Size = LargerThan(std::max(Size, FileSize));
        Open(Name, Layout.Mark(), Size, Continue);
    }
}

void TKvTextLoader::Open(const std::string& Name, TKvByteOrderMark Mark, std::size_t Size,
                         const std::function<bool()>& Continue)
{
    const bool IsThis = IsKept && FileName == Name && FileMark == Mark;
    const bool Suits = IsThis && (File->IsWhole() || FileSize >= Size);
    IsKept = false;
    if (Suits)
        return;
    Close();
    const auto Asks = [this, &Continue] {
        WasStopped = !Continue();
        return !WasStopped;
    };
    File.emplace(Name, Mark, Size, Continue ? std::function<bool()>(Asks) : Continue);
    FileName = Name;
    FileMark = Mark;
    FileSize = Size;
}

/// False when the file is not all there and the lines may go on in the rest.
bool TKvTextLoader::Cut(const TKvTextLayout& Layout, const TKvWantedLines& Wanted,
                        const std::function<bool()>& Continue)
{
    ForgetLines();
    const auto Text = File->Text();
    auto Cutter = Layout.LineCutter(Text);
    if (Wanted.Last == RowLastMax)
        FLines.reserve(EstimateLines(Text, Layout.Separator));
    std::size_t NextPoll = PollBytes;
    for (std::int64_t Number = 1; Number <= std::max(Wanted.Last, Wanted.Header) && Cutter.Next(); ++Number) {
        if (Number == Wanted.Header)
            FHeader = Cutter.Line();
        if (Wanted.First <= Number && Number <= Wanted.Last)
            FLines.push_back(Cutter.Line());
        if (Cutter.Offset() < NextPoll)
            continue;
        NextPoll = Cutter.Offset() + PollBytes;
        if (Continue && !Continue()) {
            ForgetLines();                          // cancelled: nothing of the file is imported
            return true;
        }
    }
    if (Cutter.Unclosed() && File->IsWhole())
        Unclosed = Cutter.Number();
    return File->IsWhole() || Cutter.Offset() < Text.size();
}

void TKvTextLoader::RequireClosed() const
{
    if (!IsClosed())
        throw Exception(
            FileAndLine(FileName, Unclosed) + MsgUnclosed,
            {.FileName = FileName, .Place = "line " + std::to_string(Unclosed), .Rule = erFormat});
}

void TKvTextLoader::ForgetLines()
{
    FHeader = {};
    FLines = {};
    Unclosed = 0;
}

void TKvTextLoader::Keep()
{
    ForgetLines();
    IsKept = File && !WasStopped;
}

void TKvTextLoader::EndKeeping()
{
    if (IsKept)
        Close();
}

void TKvTextLoader::Close()
{
    ForgetLines();
    File.reset();
    IsKept = WasStopped = false;
}

std::int64_t TKvTextLoader::OffsetOf(std::string_view Line) const
{
    const auto Start = File->Offset();
    return Start < 0 ? Start : Start + (Line.data() - File->Text().data());
}

} // namespace kv
