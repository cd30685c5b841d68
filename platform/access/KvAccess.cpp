#include "KvAccess.h"

#include <map>
#include <utility>

#include "KvAccessEngine.h"
#include "KvApplication.h"
#include "KvException.h"

namespace kv {

namespace {

std::unique_ptr<TAccessEngine> MakeEngine()
{
    return MakeAccessEngine({.Program = FindAccessHelper(ApplicationFolder())});
}

std::map<std::string, TAccessEngineMaker>& Classes()
{
    static std::map<std::string, TAccessEngineMaker> Registered = {{"DAO.DBEngine.36", &MakeEngine},
                                                                   {"DAO.DBEngine.35", &MakeEngine}};
    return Registered;
}

} // namespace

std::unique_ptr<TAccessEngine> CreateAccessEngine(const std::string& ClassName)
{
    const auto Found = Classes().find(ClassName);
    if (Found == Classes().end())
        throw EDatabaseError("There is no automation class " + ClassName, {.Rule = erMissing});
    return Found->second();
}

TAccessEngineMaker RegisterAccessEngine(const std::string& ClassName, TAccessEngineMaker Maker)
{
    auto Old = std::exchange(Classes()[ClassName], std::move(Maker));
    if (!Classes()[ClassName])
        Classes().erase(ClassName);
    return Old;
}

} // namespace kv
