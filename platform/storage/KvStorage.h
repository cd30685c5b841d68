// KvStorage - reads compound documents, the files with streams inside that office programs wrote.
//
//   file      := header  sector*                       a sector has 512 or 4096 bytes, the header fills one
//   header    := D0 CF 11 E0 A1 B1 1A E1  ...  109 sector numbers of the table
//   table     := next:u32le per sector                 more numbers of its sectors follow in a chain
//   directory := entry*                                see KvStorageDirectory
//   streams of less than 4096 bytes := sectors of 64 bytes in the stream of the root entry
//
// Damaged files give what can be read: an error comes when something is asked for that is not there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvFile.h"
#include "KvSectors.h"

namespace kv {

/// True for the bytes that begin a compound document.
bool IsStorage(std::string_view Bytes);
/// True when the file `FileName` begins like a compound document. Raises EFileError when it cannot be read.
bool IsStorageFile(const std::string& FileName);

struct TKvStorageEntry;

enum TKvStorageElementKind : std::uint8_t { skStorage, skStream };

/// What stands in a document.
struct TKvStorageElement
{
    std::string Name;                               ///< Process text, see TKvStorageEntry.
    TKvStorageElementKind Kind = skStream;
    std::uint32_t FirstSector = 0;
    std::uint64_t Size = 0;                         ///< Of a stream in bytes, as the file states it.
};

/// A stream, open for reading. Must not outlive its storage.
class TKvStorageStream
{
public:
    /// Messages name the stream as "stream "Book" of file "a.xls"", errors know the file.
    TKvStorageStream(TKvChainBytes Bytes, std::uint64_t StatedSize, std::string NameInMessages,
                     std::string FileNameInMessages);

    /// The bytes that are there as one piece, fewer than Size() in a damaged file: whoever gets to their end
    /// and needs more calls RequireAll. Valid as long as the stream.
    std::string_view ReadAll() const { return Content.View(); }
    /// Raises EFormatError "Cannot read stream "%s" of file "%s" past byte %d of
    /// %d: %s" when bytes are missing.
    void RequireAll() const { Require(FSize); }

    std::uint64_t Size() const { return FSize; }    ///< As the file states it.
    std::uint64_t Position() const { return FPosition; }

    /// Copies the next `Count` bytes to `Buffer`, fewer only at the end of the stream, and returns how many.
    /// Raises the error of RequireAll when one of them is missing.
    std::size_t Read(void* Buffer, std::size_t Count);
    /// A position past the end is allowed: nothing is left to read there.
    void SeekFromStart(std::uint64_t Offset) { FPosition = Offset; }
    /// Raises EFormatError "Cannot seek before the start of stream "%s" of file "%s"".
    void SeekFromCurrent(std::int64_t Offset);

private:
    void Require(std::uint64_t End) const;
    std::string Title() const;

    TKvChainBytes Content;
    std::uint64_t FSize;
    std::string Name;
    std::string FileName;
    std::uint64_t FPosition = 0;
};

/// A compound document, open for reading. Takes the memory of the file and a hundredth of it.
class TKvStorage
{
public:
    /// Reads the whole file. Raises EFileError, or EFormatError "File "%s" is no compound document: %s" with
    /// what is wrong.
    explicit TKvStorage(const std::string& Path);
    /// Keeps a view of `Bytes`.
    TKvStorage(std::string_view Bytes, std::string NameInMessages);
    TKvStorage(const TKvStorage&) = delete;
    TKvStorage& operator=(const TKvStorage&) = delete;

    /// What stands directly in the document, in the order of its directory tree.
    const std::vector<TKvStorageElement>& Elements() const { return FElements; }

    /// Opens the stream `Name`, whatever the case of its letters.
    /// Raises EFormatError "File "%s" has no stream "%s"".
    TKvStorageStream OpenStream(std::string_view Name) const;

private:
    void Open(std::string_view Bytes);
    void ReadDirectory(std::uint32_t FirstSector);
    void AddElement(const TKvStorageEntry& Entry);
    [[noreturn]] void Refuse(std::string_view Reason) const;

    const std::string FileName;
    TKvFileBytes FileBytes;                         // none when the bytes belong to the caller
    TKvSectors Sectors;
    TKvChainBytes MiniBytes;
    TKvSectors MiniSectors;                         // over MiniBytes
    std::uint32_t MiniLimit = 0;                    // smaller streams stand in them
    std::vector<TKvStorageElement> FElements;
};

} // namespace kv
