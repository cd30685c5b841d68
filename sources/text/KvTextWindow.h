// KvTextWindow - the text of a file, seen through a window, so that a large one need not fit into memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "KvOpenFile.h"
#include "KvTextFile.h"

namespace kv {

/// Follows a text from its start to its end, as often as wanted. What a file gets while it is open is no part
/// of it. A pipe, which can be read only once, stays in memory.
class TKvTextWindow
{
public:
    static constexpr std::size_t UsualPiece = std::size_t{1} << 20;

    /// Bytes after the first `MaxSize` are as if they were not there. `PieceSize`: bytes that are read at a
    /// time; the window holds two pieces until a line needs a larger one. Raises EFileError.
    TKvTextWindow(const std::string& FileName, TKvByteOrderMark Mark,
                  std::size_t MaxSize = TKvTextFile::WholeFile, std::size_t PieceSize = UsualPiece);

    /// What is seen, at first nothing. Valid until the next MoveOn and Rewind.
    std::string_view Text() const { return {Bytes.get() + First, Last - First}; }
    bool IsLast() const { return Ended; }           ///< The text ends where Text() does.
    /// With IsLast: because the file does, not because of `MaxSize`.
    bool IsWhole() const { return Limit < MaxSize || Left > 0; }

    /// Leaves the first `Done` bytes of Text() behind and reads on. False when `Continue` has ended that; it
    /// is asked after each piece and while a pipe has nothing to read. Raises EFileError; EConvertError for
    /// text that belies its mark or does not exist in the process's code page; std::bad_alloc.
    bool MoveOn(std::size_t Done, const std::function<bool()>& Continue);
    void Rewind();                                  ///< To the start of the text.

    /// The mark that the file begins with, no part of the text; none before MoveOn.
    const TKvMark* Mark() const { return FMark; }
    /// Where `Place` of Text() stands in the file; -1 when it was converted.
    std::int64_t OffsetOf(const char* Place) const;

private:
    void MakeRoom(std::size_t Count);
    bool Fill(char* Buffer, std::size_t Count, std::size_t& Filled, const std::function<bool()>& Continue);
    bool ReadText(const std::function<bool()>& Continue);
    bool ReadRaw(const std::function<bool()>& Continue);
    void TakeMark();
    void Decode();

    TKvOpenFile File;
    const TKvByteOrderMark Marks;
    const std::size_t MaxSize;
    const std::size_t PieceSize;
    const std::size_t Limit;                        // bytes of the file that are read
    const bool KeepsAll;

    std::unique_ptr<char[]> Bytes;
    std::size_t Capacity = 0;
    std::size_t First = 0, Last = 0;                // of Bytes
    std::size_t Left;                               // of the limit
    std::uint64_t Dropped = 0;                      // bytes before Bytes[0]
    const TKvMark* FMark = nullptr;
    bool Decodes = false;                           // the mark is one of another encoding than the process's
    std::string Raw;                                // read, but not decoded yet
    bool Started = false;                           // the mark was looked for
    bool Ended = false;
};

} // namespace kv
