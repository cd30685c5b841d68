// KvYardMappedFile - a file as bytes in memory, mapped.
#pragma once

#include <filesystem>
#include <string_view>

namespace kv::bench {

/// Raises std::system_error when the file cannot be opened or mapped.
class TMappedFile
{
public:
    explicit TMappedFile(const std::filesystem::path& File);
    ~TMappedFile();
    TMappedFile(const TMappedFile&) = delete;
    TMappedFile& operator=(const TMappedFile&) = delete;

    std::string_view View() const { return Bytes; }

private:
    std::string_view Bytes;
};

} // namespace kv::bench
