#include "KvHeaderReach.h"

#include <filesystem>
#include <set>

namespace kv {

namespace {

std::string NameOf(std::string_view Path)
{
    return std::filesystem::path(Path).filename().string();
}

} // namespace

void TKvHeaderReach::Add(std::string_view Path, const std::vector<TIncludeLine>& Includes)
{
    if (!Path.ends_with(".h"))
        return;
    auto& Header = Headers[NameOf(Path)];
    Header.Path = Path;
    for (const auto& Include : Includes)
        Header.Includes.push_back(NameOf(Include.Header));
}

std::vector<std::pair<std::string, std::string>> TKvHeaderReach::PulledBy(const std::string& Path) const
{
    std::vector<std::pair<std::string, std::string>> Pulled{{Path, NameOf(Path)}};
    std::set<std::string> Seen{NameOf(Path)};
    for (std::size_t I = 0; I < Pulled.size(); ++I) {
        const auto Way = Pulled[I].second;
        const auto Header = Headers.find(NameOf(Pulled[I].first));
        if (Header == Headers.end())
            continue;
        for (const auto& Name : Header->second.Includes)
            if (const auto Next = Headers.find(Name); Next != Headers.end() && Seen.insert(Name).second)
                Pulled.emplace_back(Next->second.Path, Way + " > " + Name);
    }
    Pulled.erase(Pulled.begin());
    return Pulled;
}

} // namespace kv
