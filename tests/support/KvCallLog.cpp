#include "KvCallLog.h"

#include <algorithm>
#include <iterator>

#include "KvException.h"

namespace kv {

void TCallLog::Call(std::string Entry)
{
    const bool Refusing = Refused.contains(Entry);
    Entries.push_back(std::move(Entry));
    if (Refusing)
        throw EDatabaseError(Entries.back() + " refused");
}

int TCallLog::Count(const std::string& Entry) const
{
    return static_cast<int>(std::ranges::count(Entries, Entry));
}

std::vector<std::string> TCallLog::Of(const std::string& Prefix) const
{
    std::vector<std::string> Result;
    std::ranges::copy_if(Entries, std::back_inserter(Result),
                         [&](const std::string& Entry) { return Entry.starts_with(Prefix); });
    return Result;
}

} // namespace kv
