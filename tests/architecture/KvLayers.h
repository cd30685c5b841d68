// KvLayers - judges include lines by the layers of the source tree.
//
// Arrows between layers point down only, and a third-party header stays inside the folder that wraps
// it. Target visibility keeps most of that; it cannot see a system header, nor a link line that was
// widened in passing.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// One include line of a file of the tree.
struct TIncludeLine
{
    std::string File;                               ///< Path from the root of the tree, with slashes.
    std::size_t Line = 0;                           ///< From 1.
    std::string Header;                             ///< What stands between the quotes or brackets.
};

/// The include lines of a text, in their order. Conditions around them do not matter.
std::vector<TIncludeLine> FindIncludeLines(std::string_view File, std::string_view Text);

/// Paths from the root of all headers and sources that the layers are about: not tests, fuzz targets
/// and benchmarks, which may look into every folder.
std::vector<std::string> FindSources(const std::filesystem::path& Root);

/// The whole text of a file.
std::string ReadText(const std::filesystem::path& Path);

/// Knows which folder owns which header, and what each folder may include.
class TKvLayers
{
public:
    /// `Sources` are paths from the root of the tree. Headers are told by the name of the unit alone.
    explicit TKvLayers(const std::vector<std::string>& Sources);

    /// Why the line is against the layers, in one line; empty when it is not.
    std::string Judge(const TIncludeLine& Include) const;

private:
    std::string JudgeOwn(const TIncludeLine& Include, const std::vector<std::string>& Owners) const;

    std::map<std::string, std::vector<std::string>, std::less<>> FoldersOfHeader;
};

} // namespace kv
