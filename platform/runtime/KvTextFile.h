// KvTextFile - the text of a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>

#include "KvCodePageCatalog.h"
#include "KvFile.h"

namespace kv {

/// What to make of a byte order mark at the start of a file.
enum TKvByteOrderMark {
    bmIsText,                                       ///< It is text like any other.
    bmTellsEncoding                                 ///< It is no text; UTF-8 and UTF-16 become process text.
};

/// A byte order mark: the bytes that it is, and the encoding of which it is one.
struct TKvMark
{
    std::string_view Bytes;
    std::string_view CodePage;
    /// A text without the character at its end that is cut short.
    std::string_view (*WholeCharacters)(std::string_view Text);
};

/// The mark that a text begins with, or none.
const TKvMark* FindByteOrderMark(std::string_view Text);

/// `Text` without the byte order mark that it may begin with.
std::string_view WithoutByteOrderMark(std::string_view Text);

/// `Text` of a file, in code page `CodePage`, as process text. Raises EConvertError, which names the file.
std::string DecodeText(const std::string& FileName, std::string_view Text, std::string_view CodePage);

/// Looks in the beginning of a text for the name of its encoding: an answer that holds as long as the text,
/// empty when there is none.
using TKvFindEncoding = std::function<std::string_view(std::string_view Text)>;

/// The text of a file, or its beginning, in memory.
class TKvTextFile
{
public:
    static constexpr std::size_t WholeFile = std::numeric_limits<std::size_t>::max();

    /// Reads the first `MaxSize` bytes; a part whose mark tells the encoding ends with a whole character.
    /// `Continue` as ReadFileBytes has it. Raises EFileError, or EConvertError when the mark belies the
    /// text or a character does not exist in the process's code page.
    TKvTextFile(const std::string& FileName, TKvByteOrderMark Mark, std::size_t MaxSize = WholeFile,
                const std::function<bool()>& Continue = {});
    /// Reads all of a file whose text tells its encoding, from which it becomes process text: a byte order
    /// mark comes first, then what `Declared` finds. Bytes that are no text of it become what AnsiToUtf8
    /// makes of such. Same errors.
    TKvTextFile(const std::string& FileName, const TKvFindEncoding& Declared,
                const std::function<bool()>& Continue = {});
    TKvTextFile(const TKvTextFile&) = delete;
    TKvTextFile& operator=(const TKvTextFile&) = delete;

    std::string_view Text() const { return FText; } ///< Views the object.
    bool IsWhole() const { return FIsWhole; }       ///< False when the file may hold more.
    /// Where Text() begins in the file; -1 when it was converted and has other bytes than the file.
    std::int64_t Offset() const { return FOffset; }
    /// Bytes were no text of the encoding that was told, and were replaced.
    bool HasStandIns() const { return FHasStandIns; }
    /// The encoding from which it was converted, or that it has because it is told so; empty: none was told.
    const std::string& Encoding() const { return FEncoding; }

private:
    void Read(const std::string& FileName, std::size_t MaxSize, const std::function<bool()>& Continue);
    void DropMark(std::size_t Size);
    void Decode(const std::string& FileName, std::string_view CodePage, TUndefinedBytes Undefined);

    TKvFileBytes Bytes;
    std::string Decoded;                            // instead of Bytes, for another encoding
    std::string_view FText;
    bool FIsWhole = false;
    std::int64_t FOffset = 0;
    bool FHasStandIns = false;
    std::string FEncoding;
};

} // namespace kv
