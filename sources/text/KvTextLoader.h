// KvTextLoader - loads those lines of a text file that somebody wants, and no more of the file than they
// need.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTextFile.h"
#include "KvTextLayout.h"

namespace kv {

/// Lines of a file, counted from 1.
struct TKvWantedLines
{
    int First = 1, Last = 0;                        ///< With a first line below 1 from line 1 on.
    int Header = 1;                                 ///< One line more, wherever it stands; 0: none.
    std::size_t Bytes = TKvTextFile::WholeFile;     ///< Of the file, in which they are looked for.
    bool Grows = false;                             ///< Until the lines end in it; else the last may be cut.
};

/// Holds the lines that were loaded last, and their file.
class TKvTextLoader
{
public:
    /// Loads the lines of the file. What was kept of it is not read again where it does. `Continue` is asked
    /// every few megabytes, when it is given; false ends the loading without a line. Raises EFileError, and
    /// EConvertError for text that cannot be converted.
    void Load(const std::string& FileName, const TKvTextLayout& Layout, const TKvWantedLines& Wanted,
              const std::function<bool()>& Continue);
    /// Raises Exception when a value was met that no qualifier closes in the whole file.
    void RequireClosed() const;
    /// The same as a question.
    bool IsClosed() const { return Unclosed == 0; }

    /// Forgets the lines. What was read of the file is kept for the next Load.
    void Keep();
    void EndKeeping();                              ///< Closes a file that is kept.
    void Close();

    // Views of what was loaded last; none after Keep and Close.
    const std::vector<std::string_view>& Lines() const { return FLines; }
    std::string_view Header() const { return FHeader; }
    /// Where `Line`, one of them, stands in the file; -1 when its text was converted.
    std::int64_t OffsetOf(std::string_view Line) const;

private:
    void Open(const std::string& Name, TKvByteOrderMark Mark, std::size_t Size,
              const std::function<bool()>& Continue);
    bool Cut(const TKvTextLayout& Layout, const TKvWantedLines& Wanted,
             const std::function<bool()>& Continue);
    void ForgetLines();

    std::optional<TKvTextFile> File;                // what stands below views it
    std::string FileName;
    TKvByteOrderMark FileMark = bmIsText;
    std::size_t FileSize = 0;                       // bytes that were asked for
    bool IsKept = false;                            // it may be looked at again
    bool WasStopped = false;                        // half of it was not read

    std::string_view FHeader;
    std::vector<std::string_view> FLines;
    std::size_t Unclosed = 0;                       // the line whose value is not closed
};

} // namespace kv
