// KvTempFolder - a folder of a test's own.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// A new, empty folder that is gone with the object.
class TTempFolder
{
public:
    TTempFolder();
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;
    ~TTempFolder();

    std::string operator/(std::string_view Name) const { return (Path / Name).string(); }
    /// Writes a file and gives its path.
    std::string Write(std::string_view Name, std::string_view Bytes) const;
    std::string Read(std::string_view Name) const;
    /// The names of all files, sorted.
    std::vector<std::string> Names() const;

    const std::filesystem::path Path;
};

} // namespace kv
