// KvFileAlias - lets a file be opened under a name that is not its own, so that whatever reads it calls it as
// its user does: "standard input".
#pragma once

#include <string>

namespace kv {

/// While it lives, files of this process that are opened as `Name` are those at `Path`. One alias a name.
class TKvFileAlias
{
public:
    TKvFileAlias(std::string Name, const std::string& Path);
    TKvFileAlias(const TKvFileAlias&) = delete;
    TKvFileAlias& operator=(const TKvFileAlias&) = delete;
    ~TKvFileAlias();

private:
    const std::string Name;
};

/// Where the file that is called `Name` lies: another path for an alias, else `Name`.
std::string PathOfFile(const std::string& Name);

} // namespace kv
