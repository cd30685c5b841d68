#include "KvCodePageCatalog.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "KvCodePageTables.h"
#include "KvException.h"
#include "KvIconv.h"
#include "KvText.h"
#include "KvUtf8.h"

namespace kv {

namespace {

class TUtf8Page final : public TCodePage
{
public:
    bool IsUtf8() const override { return true; }
    bool IsSameInUtf8(std::string_view Text) const override { return IsValidUtf8(Text); }

    bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const override
    {
        while (!Text.empty()) {
            const auto Size = ValidUtf8Size(Text);
            Result.append(Text.substr(0, Size));
            Text.remove_prefix(Size);
            if (Text.empty())
                break;
            if (Undefined == ubRefuse)
                return false;
            AppendUtf8(Result, StandInFor(static_cast<unsigned char>(Text.front())));
            Text.remove_prefix(1);
        }
        return true;
    }
    bool Encode(std::string_view Text, std::string& Result) const override
    {
        Result.append(Text);
        return true;
    }
};

/// A page of one byte a character, as a table of the 256 characters.
class TTablePage final : public TCodePage
{
public:
    /// Nothing when some byte does not stand for a character of its own.
    static std::unique_ptr<TTablePage> Create(const TIconv& ToUtf8,
                                              std::span<const TKvPageChange> Changes = {})
    {
        auto Page = std::make_unique<TTablePage>();
        for (int Byte = 0; Byte < 256; ++Byte)
            if (!Page->Fill(static_cast<unsigned char>(Byte), ToUtf8))
                return nullptr;
        for (const auto& Change : Changes)
            Page->Put(Change);
        Page->SortBytes();
        return Page;
    }

    bool IsSingleByte() const override { return true; }
    bool IsSameInUtf8(std::string_view Text) const override { return HasAscii && IsAscii(Text); }

    bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const override
    {
        while (!Text.empty()) {
            if (const auto Size = HasAscii ? AsciiSize(Text) : 0; Size > 0) {
                Result.append(Text.substr(0, Size));
                Text.remove_prefix(Size);
                continue;
            }
            const auto& [Utf8, IsDefined] = Characters[static_cast<unsigned char>(Text.front())];
            if (!IsDefined && Undefined == ubRefuse)
                return false;
            Result.append(Utf8);
            Text.remove_prefix(1);
        }
        return true;
    }

    bool Encode(std::string_view Text, std::string& Result) const override
    {
        while (!Text.empty()) {
            const auto Size = Utf8SequenceSize(Text);
            const auto Found = std::ranges::lower_bound(Bytes, Text.substr(0, Size), {}, &TByteOf::Utf8);
            if (Size == 0 || Found == Bytes.end() || Found->Utf8 != Text.substr(0, Size))
                return false;
            Result += Found->Byte;
            Text.remove_prefix(Size);
        }
        return true;
    }

private:
    struct TCharacter
    {
        std::string Utf8;
        bool IsDefined = true;
    };
    struct TByteOf
    {
        std::string_view Utf8;
        char Byte;
    };

    bool Fill(unsigned char Byte, const TIconv& ToUtf8)
    {
        const char Char = static_cast<char>(Byte);
        std::string_view Text(&Char, 1);
        auto& [Utf8, IsDefined] = Characters[Byte];
        const int Error = ToUtf8.Run(Text, Utf8);
        IsDefined = Error == 0;
        if (!IsDefined)
            AppendUtf8(Utf8, StandInFor(Byte));
        HasAscii = HasAscii && (Byte >= 0x80 || (Utf8.size() == 1 && Utf8[0] == Char));
        // EINVAL marks the first of several bytes, and nothing or several characters a page with states.
        return Error != EINVAL && !Utf8.empty() && Utf8.size() == Utf8SequenceSize(Utf8);
    }

    void Put(const TKvPageChange& Change)
    {
        auto& [Utf8, IsDefined] = Characters[Change.Byte];
        IsDefined = Change.Character != 0;
        Utf8.clear();
        AppendUtf8(Utf8, IsDefined ? char32_t{Change.Character} : StandInFor(Change.Byte));
    }

    void SortBytes()
    {
        for (std::size_t Byte = 0; Byte < Characters.size(); ++Byte)
            Bytes.push_back({Characters[Byte].Utf8, static_cast<char>(Byte)});
        std::ranges::stable_sort(Bytes, {}, &TByteOf::Utf8);
    }

    std::array<TCharacter, 256> Characters;
    std::vector<TByteOf> Bytes;                     // sorted by Utf8, which views Characters
    bool HasAscii = true;                           // the lower half is that of ASCII
};

/// Any other page that iconv knows.
class TIconvPage final : public TCodePage
{
public:
    TIconvPage(TIconv To, TIconv From) : ToUtf8(std::move(To)), FromUtf8(std::move(From)) {}

    bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const override
    {
        while (ToUtf8.Run(Text, Result) != 0) {
            if (Undefined == ubRefuse)
                return false;
            if (Text.empty())
                break;
            AppendUtf8(Result, StandInFor(static_cast<unsigned char>(Text.front())));
            Text.remove_prefix(1);
        }
        return true;
    }

    bool Encode(std::string_view Text, std::string& Result) const override
    {
        return FromUtf8.Run(Text, Result) == 0;
    }

private:
    TIconv ToUtf8, FromUtf8;
};

bool NamesUtf8(std::string_view Name)
{
    return SameText(Name, "UTF-8") || SameText(Name, "UTF8") || Name == "65001";
}

std::unique_ptr<TCodePage> CreatePage(std::string_view Name)
{
    if (NamesUtf8(Name))
        return std::make_unique<TUtf8Page>();
    if (const auto* const Own = FindOwnPage(Name))
        if (const TIconv Base("UTF-8", Own->Base); Base.IsOpen())
            return TTablePage::Create(Base, Own->Changes);
    for (const auto& IconvName : IconvNames(Name)) {
        TIconv ToUtf8("UTF-8", IconvName), FromUtf8(IconvName, "UTF-8");
        if (!ToUtf8.IsOpen() || !FromUtf8.IsOpen())
            continue;
        if (auto Page = TTablePage::Create(ToUtf8))
            return Page;
        return std::make_unique<TIconvPage>(std::move(ToUtf8), std::move(FromUtf8));
    }
    throw EConvertError(FormatText("Unknown code page '%s'", {Name}));
}

} // namespace

const TCodePage& CodePageNamed(std::string_view Name)
{
    static std::map<std::string, std::unique_ptr<TCodePage>, std::less<>> Pages;
    const auto Found = Pages.find(Name);
    if (Found != Pages.end())
        return *Found->second;
    return *Pages.emplace(Name, CreatePage(Name)).first->second;
}

} // namespace kv
