#include "KvFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "KvException.h"
#include "KvFileAlias.h"
#include "KvOpenFile.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t PieceSize = std::size_t{4} << 20;
constexpr std::size_t FirstCapacity = std::size_t{64} << 10;    // of a file that does not tell its size

/// Asks the system for large pages: filling a hundred megabytes page by page costs more than copying them.
void PreferLargePages(char* Bytes, std::size_t Size)
{
    const auto PageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const auto Skipped = (PageSize - reinterpret_cast<std::uintptr_t>(Bytes) % PageSize) % PageSize;
    if (Size > PieceSize)
        madvise(Bytes + Skipped, Size - Skipped, MADV_HUGEPAGE); // a wish: failing changes nothing
}

/// Bytes that are appended piece by piece.
class TByteBuffer
{
public:
    explicit TByteBuffer(std::size_t InitialCapacity) { Grow(InitialCapacity); }

    std::size_t Size() const { return FSize; }
    std::size_t Room() const { return Capacity - FSize; }
    char* End() { return Bytes.get() + FSize; }
    void Advance(std::size_t Count) { FSize += Count; }

    void Grow(std::size_t NewCapacity)
    {
        auto Larger = std::make_unique_for_overwrite<char[]>(NewCapacity);
        PreferLargePages(Larger.get(), NewCapacity);
        if (FSize != 0)
            std::memcpy(Larger.get(), Bytes.get(), FSize);
        Bytes = std::move(Larger);
        Capacity = NewCapacity;
    }

    TKvFileBytes Release() { return {std::move(Bytes), FSize}; }

private:
    std::unique_ptr<char[]> Bytes;
    std::size_t FSize = 0;
    std::size_t Capacity = 0;
};

/// Makes room for at least one byte if the file has one more: a file whose size was known ends here
/// as a rule, and then the buffer stays as large as the file.
bool MakeRoom(TByteBuffer& Buffer, TKvOpenFile& File, std::size_t MaxSize)
{
    char Next;
    if (File.Read(&Next, 1) == 0)
        return false;
    Buffer.Grow(std::min(MaxSize, std::max(2 * Buffer.Size(), FirstCapacity)));
    *Buffer.End() = Next;
    Buffer.Advance(1);
    return true;
}

TKvFileBytes ReadToEnd(TKvOpenFile& File, std::size_t MaxSize, const std::function<bool()>& Continue)
{
    const auto StatedSize = File.StatedSize();
    TByteBuffer Buffer(std::min(MaxSize, StatedSize != 0 ? StatedSize : FirstCapacity));
    while (Buffer.Size() < MaxSize) {
        while (Continue && !File.IsReady())
            if (!Continue())
                return {};
        if (Buffer.Room() == 0 && !MakeRoom(Buffer, File, MaxSize))
            break;
        if (Buffer.Room() != 0) {
            const auto Count = File.Read(Buffer.End(), std::min(Buffer.Room(), PieceSize));
            if (Count == 0)
                break;
            Buffer.Advance(Count);
        }
        if (Continue && !Continue())
            return {};
    }
    return Buffer.Release();
}

} // namespace

void RaiseFileError(std::string_view Action, const std::string& FileName, int Code)
{
    const auto Reason = std::generic_category().message(Code);
    throw EFileError(FormatText("Cannot %s file \"%s\": %s", {Action, FileName, Reason}),
                     {.FileName = FileName, .Rule = Code == ENOENT ? erMissing : erStorage});
}

TKvFileBytes ReadFileBytes(const std::string& FileName, std::size_t MaxSize,
                           const std::function<bool()>& Continue)
{
    TKvOpenFile File(FileName);
    try {
        return ReadToEnd(File, MaxSize, Continue);
    } catch (const std::bad_alloc&) {
        RaiseFileError("read", FileName, ENOMEM);
    }
}

std::uint64_t FileSize(const std::string& FileName)
{
    // Not opened: closing a pipe again would end the program that writes to it.
    const auto Path = PathOfFile(FileName);
    struct stat Status;
    if (stat(Path.c_str(), &Status) != 0 || access(Path.c_str(), R_OK) != 0)
        RaiseFileError("open", FileName, errno);
    if (S_ISDIR(Status.st_mode))
        RaiseFileError("open", FileName, EISDIR);
    return S_ISREG(Status.st_mode) ? static_cast<std::uint64_t>(Status.st_size) : 0;
}

} // namespace kv
