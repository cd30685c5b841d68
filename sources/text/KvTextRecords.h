// KvTextRecords - those lines of a text file that somebody wants, one after the other, and no more of the
// file than they need.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "KvTextLayout.h"
#include "KvTextWindow.h"

namespace kv {

/// Lines of a file, counted from 1.
struct TKvWantedLines
{
    int First = 1, Last = 0;                        ///< With a first line below 1 from line 1 on.
    int Header = 1;                                 ///< One line more, wherever it stands; 0: none.
    std::int64_t MaxCount = std::numeric_limits<std::int64_t>::max(); ///< Of records.
    std::size_t Bytes = TKvTextFile::WholeFile;     ///< Of the file, in which they are looked for.
};

/// Lines that are no records.
struct TKvEmptyLines
{
    std::int64_t Count = 0;
    std::int64_t First = 0;                         ///< The first of them, from 1.
};

/// The records of a file: its wanted lines without empty ones. The file is read once to count them, and, but
/// for a small one, again as one goes from one to the next.
class TKvTextRecords
{
public:
    /// `PieceSize`: bytes that are read at a time.
    explicit TKvTextRecords(std::size_t PieceSize = TKvTextWindow::UsualPiece) : Piece(PieceSize) {}

    /// Opens the file and counts. What was kept of it is not opened again. `Continue` is asked while that
    /// goes on, when it is given; false ends it without a record. Raises EFileError, and EConvertError for
    /// text that cannot be converted.
    void Load(const std::string& FileName, const TKvTextLayout& Layout, const TKvWantedLines& Wanted,
              const std::function<bool()>& Continue);
    /// Raises Exception when a value was met that no qualifier closes in the whole file.
    void RequireClosed() const;
    /// The same as a question.
    bool IsClosed() const { return Unclosed == 0; }

    // What the file says of itself.
    /// The character that delimits values: that of the layout, or of a line that names it.
    char Delimiter() const { return Layout.Delimiter; }
    bool NamesDelimiter() const { return SkippedLines > 0; }
    /// A mark said in which encoding the text is.
    bool TellsEncoding() const { return Window && Window->Mark() != nullptr; }
    bool IsUtf16() const;

    std::size_t Count() const { return FCount; }
    const TKvEmptyLines& EmptyLines() const { return FEmptyLines; }
    const std::string& Header() const { return FHeader; }
    /// Cuts records into values.
    TKvTextFields FieldCutter() const { return Layout.FieldCutter(); }

    void GoFirst();
    void GoNext();
    // The current record. Views hold until the next one.
    bool HasRecord() const { return FHasRecord; }
    std::size_t Index() const { return FIndex; }    ///< From 0.
    std::string_view Line() const { return Lines->Line(); }
    std::size_t Number() const { return Lines->Number() - SkippedLines; } ///< Of its line.
    /// The number of the line where it begins, for programs that know neither qualifiers nor skipped lines.
    std::size_t PlainNumber() const { return Lines->PlainNumber(); }
    /// Where it begins in the file; -1 when its text was converted.
    std::int64_t Offset() const { return Window->OffsetOf(Line().data()); }

    /// Forgets the records. The file stays open for the next Load.
    void Keep();
    void EndKeeping();                              ///< Closes a file that is kept.
    void Close();

private:
    void Open(const std::string& Name, const TKvTextLayout& TheLayout, std::size_t Size);
    void Rewind();
    void SkipDelimiterLine();
    void CountRecords();
    void CountEmptyLine();
    void Advance();
    bool NextLine();
    bool SeeMore();
    void Forget();
    std::string_view Seen() const;

    const std::size_t Piece;
    std::optional<TKvTextWindow> Window;            // what stands below views it
    std::optional<TKvTextLines> Lines;
    std::string FileName;
    std::size_t FileSize = 0;                       // bytes that were asked for
    TKvTextLayout Layout;
    std::string Separator;                          // which the layout views
    TKvWantedLines Wanted;
    std::function<bool()> Continue;                 // while records are counted
    bool IsKept = false;                            // it may be looked at again
    bool WasStopped = false;

    std::size_t SkippedLines = 0;                   // one that names the delimiter
    std::size_t FCount = 0;
    std::size_t FIndex = 0;
    bool FHasRecord = false;
    std::string FHeader;
    TKvEmptyLines FEmptyLines;
    std::size_t Unclosed = 0, PlainUnclosed = 0;    // the line whose value is not closed
};

} // namespace kv
