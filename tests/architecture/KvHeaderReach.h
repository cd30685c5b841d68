// KvHeaderReach - what a header pulls in, over all the headers that it includes.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvLayers.h"

namespace kv {

/// The headers of the tree and their include lines. Headers are told by their names, which are unique.
class TKvHeaderReach
{
public:
    /// Sources that are no headers do not matter, nor do lines that include none of the tree.
    void Add(std::string_view Path, const std::vector<TIncludeLine>& Includes);

    /// The paths of all that `Path` pulls in, the nearest first, itself not among them. Each has the way that
    /// leads there: "A.h > B.h > C.h".
    std::vector<std::pair<std::string, std::string>> PulledBy(const std::string& Path) const;

private:
    struct THeader
    {
        std::string Path;
        std::vector<std::string> Includes;          // names
    };

    std::map<std::string, THeader, std::less<>> Headers; // by name
};

} // namespace kv
