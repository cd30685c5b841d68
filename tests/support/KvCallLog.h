// KvCallLog - what the test doubles of a run were asked to do, in order. A test may have any of these
// calls refused.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kv {

class TCallLog
{
public:
    /// Notes `Entry`, then raises EDatabaseError "<Entry> refused" when it is one of those refused.
    void Call(std::string Entry);
    /// From now on every call noted as `Entry` raises.
    void Refuse(std::string Entry) { Refused.insert(std::move(Entry)); }
    void Clear() { Entries.clear(); }

    bool Has(const std::string& Entry) const { return Count(Entry) > 0; }
    int Count(const std::string& Entry) const;
    /// The entries that begin with `Prefix`.
    std::vector<std::string> Of(const std::string& Prefix) const;

    std::vector<std::string> Entries;

private:
    std::set<std::string> Refused;
};

} // namespace kv
