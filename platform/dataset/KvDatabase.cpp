#include "KvDatabase.h"

#include <algorithm>
#include <cassert>
#include <filesystem>
#include <system_error>
#include <utility>

#include "KvException.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t ShortestScheme = 2;           // one letter is a drive

std::vector<TKvDatabaseDriver>& Registered()
{
    static std::vector<TKvDatabaseDriver> Drivers;
    return Drivers;
}

TKvDatabaseDriver* FindDriver(std::string_view Scheme)
{
    const auto Found = std::ranges::find_if(
        Registered(), [Scheme](const auto& Driver) { return SameText(Driver.Scheme, Scheme); });
    return Found != Registered().end() ? &*Found : nullptr;
}

bool ReadsAsScheme(std::string_view Word)
{
    const auto IsLetter = [](char C) { return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z'); };
    const auto MayFollow = [&](char C) {
        return IsLetter(C) || (C >= '0' && C <= '9') || C == '+' || C == '-';
    };
    return Word.size() >= ShortestScheme && IsLetter(Word.front()) && std::ranges::all_of(Word, MayFollow);
}

bool IsFile(std::string_view Name)
{
    std::error_code Ignored;
    return std::filesystem::exists(Name, Ignored);
}

[[noreturn]] void RaiseUnknown(std::string_view Url, const std::string& Reason)
{
    std::string Known;
    for (const auto& Driver : Registered())
        Known += (Known.empty() ? "" : ", ") + Driver.Scheme;
    throw EDatabaseError("Cannot open database \"" + std::string(Url) + "\": " + Reason +
                             " (known: " + (Known.empty() ? "none" : Known) + ")",
                         {.FileName = std::string(Url), .Rule = erMissing});
}

} // namespace

TPublishedProperties TKvDatabase::PublishedProperties() const
{
    return PublishAfter(TComponent::PublishedProperties(),
                        {Publish("DatabaseName", &TKvDatabase::DatabaseName),
                         Publish("CacheSize", &TKvDatabase::CacheSize),
                         Publish("BusyTimeout", &TKvDatabase::BusyTimeout),
                         Publish("ForeignKeys", &TKvDatabase::ForeignKeys)});
}

std::vector<std::string> TKvDatabase::TableNames()
{
    std::vector<std::string> Names;
    for (auto& Table : Tables())
        Names.push_back(std::move(Table.Name));
    return Names;
}

void RegisterDatabaseDriver(TKvDatabaseDriver Driver)
{
    assert(ReadsAsScheme(Driver.Scheme));
    if (auto* const Same = FindDriver(Driver.Scheme))
        *Same = std::move(Driver);
    else
        Registered().push_back(std::move(Driver));
}

const std::vector<TKvDatabaseDriver>& DatabaseDrivers()
{
    return Registered();
}

std::unique_ptr<TKvDatabase> MakeDatabase(std::string_view Url)
{
    if (const auto Colon = Url.find(':'); Colon != Url.npos) {
        const auto Scheme = Url.substr(0, Colon);
        if (const auto* const Driver = FindDriver(Scheme))
            return Driver->Create(Url.substr(Colon + 1));
        if (ReadsAsScheme(Scheme) && !IsFile(Url))
            RaiseUnknown(Url,
                         "there is no such file, and \"" + std::string(Scheme) + "\" is no kind of database");
    }
    const auto OfPaths = std::ranges::find(Registered(), true, &TKvDatabaseDriver::TakesPaths);
    if (OfPaths == Registered().end())
        RaiseUnknown(Url, "it does not say what kind of database it is");
    return OfPaths->Create(Url);
}

std::unique_ptr<TKvDatabase> OpenDatabase(std::string_view Url)
{
    auto Database = MakeDatabase(Url);
    Database->Open();
    return Database;
}

} // namespace kv
