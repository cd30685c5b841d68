// KvFileWindow - a file that is looked at part by part, so that a large one need not fit into memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace kv {

/// A view of a file that follows the offsets asked for; quick where they go up.
class TKvFileWindow
{
public:
    static constexpr std::size_t UsualSize = std::size_t{1} << 20;

    /// `WindowSize`, in bytes, is the most that can be seen at once. Raises EFileError
    /// "Cannot open file "%s": %s".
    explicit TKvFileWindow(const std::string& FileName, std::size_t WindowSize = UsualSize);

    /// The size of the file when it was opened; 0 for what is no regular file.
    std::uint64_t FileSize() const { return FFileSize; }

    /// The `Count` bytes at `Offset`, fewer where the file ends; `Count` is at most the size of the window.
    /// Valid until the next call. Raises EFileError "Cannot read file "%s": %s".
    std::string_view At(std::uint64_t Offset, std::size_t Count)
    {
        if (Offset < Start || Offset - Start > Filled || Count > Filled - (Offset - Start))
            Move(Offset);
        const std::size_t Place = static_cast<std::size_t>(Offset - Start);
        return std::string_view(Bytes.get(), Filled).substr(Place, Count);
    }

private:
    void Move(std::uint64_t Offset);

    const std::string Name;
    const std::uint64_t FFileSize;
    const std::size_t Capacity;
    std::unique_ptr<char[]> Bytes;
    std::ifstream File;
    std::uint64_t Start = 0;                        // offset of Bytes[0]
    std::size_t Filled = 0;                         // of Bytes
};

} // namespace kv
