// KvSpooledFile - what comes through a pipe, kept in a nameless temporary file, so that it can be read
// more than once.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>

namespace kv {

/// True for a pipe, a socket or a terminal: whatever gives its bytes only once. Raises EFileError as
/// opening the file would.
bool IsReadOnce(const std::string& FileName);

/// The temporary file is gone when the object is.
class TSpooledFile
{
public:
    static constexpr const char* StandardInput = "/dev/stdin";

    /// Reads `FileName` to its end. `Continue` is asked several times a second, also while nothing
    /// comes; false stops the reading, and the rest is missing.
    /// Raises EFileError when the file cannot be read, gives more than `MaxSize` bytes, or the temporary one
    /// cannot be written.
    TSpooledFile(const std::string& FileName, const std::function<bool()>& Continue,
                 std::uint64_t MaxSize = std::numeric_limits<std::uint64_t>::max());
    TSpooledFile(const TSpooledFile&) = delete;
    TSpooledFile& operator=(const TSpooledFile&) = delete;
    ~TSpooledFile();

    /// A name under which this process can open the bytes.
    std::string Name() const;

private:
    const int Descriptor;
};

} // namespace kv
