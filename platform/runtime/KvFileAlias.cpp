#include "KvFileAlias.h"

#include <map>
#include <utility>

namespace kv {

namespace {

std::map<std::string, std::string>& Aliases()
{
    static std::map<std::string, std::string> Paths;
    return Paths;
}

} // namespace

TKvFileAlias::TKvFileAlias(std::string Given, const std::string& Path) : Name(std::move(Given))
{
    Aliases()[Name] = Path;
}

TKvFileAlias::~TKvFileAlias()
{
    Aliases().erase(Name);
}

std::string PathOfFile(const std::string& Name)
{
    const auto Found = Aliases().find(Name);
    return Found == Aliases().end() ? Name : Found->second;
}

} // namespace kv
