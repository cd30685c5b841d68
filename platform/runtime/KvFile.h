// KvFile - the bytes of a file in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace kv {

/// Bytes read from a file, owned.
class TKvFileBytes
{
public:
    TKvFileBytes() = default;
    TKvFileBytes(std::unique_ptr<char[]> Bytes, std::size_t Size) : FBytes(std::move(Bytes)), FSize(Size) {}

    std::string_view View() const { return {FBytes.get(), FSize}; }
    std::size_t Size() const { return FSize; }

private:
    std::unique_ptr<char[]> FBytes;
    std::size_t FSize = 0;
};

/// The first `MaxSize` bytes of the file `FileName`, or all of it. Pipes are read to their end.
/// `Continue`, when given, is asked between pieces of a few megabytes and while a pipe has nothing to
/// read; false stops the reading and gives nothing.
/// Raises EFileError "Cannot open file "%s": %s" (no such file, permission denied, is a directory, ...)
/// or "Cannot read file "%s": %s".
TKvFileBytes ReadFileBytes(const std::string& FileName,
                           std::size_t MaxSize = std::numeric_limits<std::size_t>::max(),
                           const std::function<bool()>& Continue = {});

/// The size of a regular file in bytes, 0 for anything else that can be opened. Raises EFileError.
std::uint64_t FileSize(const std::string& FileName);

/// Raises EFileError "Cannot %s file "%s": %s" with `Action` ("open") and the system's word for `Code`,
/// an errno.
[[noreturn]] void RaiseFileError(std::string_view Action, const std::string& FileName, int Code);

} // namespace kv
