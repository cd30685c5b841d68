// KvOpenFile - a file that is open for reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kv {

/// Read from where it stands, at first from its start. Calls raise EFileError when the system refuses them:
/// "Cannot open file "%s": %s" (no such file, permission denied, is a directory, ...) or "Cannot read file
/// "%s": %s".
class TKvOpenFile
{
public:
    explicit TKvOpenFile(const std::string& FileName);
    TKvOpenFile(const TKvOpenFile&) = delete;
    TKvOpenFile& operator=(const TKvOpenFile&) = delete;
    ~TKvOpenFile();

    const std::string& Name() const { return FName; }
    /// What the system says of its size: 0 for a pipe and for some files that do hold bytes.
    std::size_t StatedSize() const;
    /// True for a file that can be read more than once, which a pipe cannot.
    bool CanRewind() const;
    /// Waits a moment for bytes; false when a pipe has none yet.
    bool IsReady();
    /// Up to `Size` bytes, none only at the end of the file.
    std::size_t Read(char* Buffer, std::size_t Size);
    void Rewind();                                  ///< To the start of the file.

private:
    const std::string FName;
    int Descriptor;
};

} // namespace kv
