#include "KvCodePage.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iconv.h>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::uint64_t HighBits = 0x8080808080808080;

// --- UTF-8 -------------------------------------------------------------------------------------------

/// The first byte of [First, Last) that is not ASCII, or Last; eight bytes at a step.
const char* SkipAscii(const char* First, const char* Last)
{
    for (; Last - First >= 8; First += 8) {
        std::uint64_t Word;
        std::memcpy(&Word, First, sizeof Word);
        if ((Word & HighBits) != 0)
            break;
    }
    while (First != Last && static_cast<signed char>(*First) >= 0)
        ++First;
    return First;
}

bool IsAscii(std::string_view Text)
{
    const char* const Last = Text.data() + Text.size();
    return SkipAscii(Text.data(), Last) == Last;
}

constexpr bool IsContinuation(char Char) { return (static_cast<unsigned char>(Char) & 0xC0) == 0x80; }

/// The size of the well-formed sequence at the front of [First, Last), not empty; 0 when there is none.
/// The second byte decides on overlong forms, surrogates and values past U+10FFFF.
std::size_t SequenceSize(const char* First, const char* Last)
{
    const auto Lead = static_cast<unsigned char>(*First);
    if (Lead < 0x80)
        return 1;
    if (Lead < 0xC2 || Lead > 0xF4)
        return 0;
    const std::size_t Size = Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : 4;
    if (static_cast<std::size_t>(Last - First) < Size || !std::all_of(First + 1, First + Size, IsContinuation))
        return 0;
    const auto Second = static_cast<unsigned char>(First[1]);
    switch (Lead) {
    case 0xE0: return Second >= 0xA0 ? Size : 0;
    case 0xED: return Second <= 0x9F ? Size : 0;
    case 0xF0: return Second >= 0x90 ? Size : 0;
    case 0xF4: return Second <= 0x8F ? Size : 0;
    default:   return Size;
    }
}

/// The size of the longest front of `Text` that is valid UTF-8.
std::size_t ValidSize(std::string_view Text)
{
    const char* Place = Text.data();
    const char* const Last = Place + Text.size();
    while ((Place = SkipAscii(Place, Last)) != Last) {
        const auto Size = SequenceSize(Place, Last);
        if (Size == 0)
            break;
        Place += Size;
    }
    return static_cast<std::size_t>(Place - Text.data());
}

void AppendUtf8(std::string& Text, char32_t Point)
{
    const auto Put = [&Text](char32_t Byte) { Text += static_cast<char>(Byte); };
    const auto PutContinuation = [&](int Shift) { Put(0x80 | (Point >> Shift & 0x3F)); };
    if (Point < 0x80) {
        Put(Point);
    } else if (Point < 0x800) {
        Put(0xC0 | Point >> 6);
        PutContinuation(0);
    } else if (Point < 0x10000) {
        Put(0xE0 | Point >> 12);
        PutContinuation(6);
        PutContinuation(0);
    } else {
        Put(0xF0 | Point >> 18);
        PutContinuation(12);
        PutContinuation(6);
        PutContinuation(0);
    }
}

/// The number of a byte without a character: among the controls, and past them, where they end, in the
/// private use area, so that no letter appears that nobody wrote.
constexpr char32_t StandInFor(unsigned char Byte) { return Byte < 0xA0 ? Byte : 0xF700 + Byte; }

// --- UTF-16 ------------------------------------------------------------------------------------------

constexpr bool IsLead(char32_t Unit) { return Unit >= 0xD800 && Unit <= 0xDBFF; }
constexpr bool IsTrail(char32_t Unit) { return Unit >= 0xDC00 && Unit <= 0xDFFF; }
constexpr bool IsSurrogate(char32_t Unit) { return IsLead(Unit) || IsTrail(Unit); }
constexpr char32_t PointOf(char32_t Lead, char32_t Trail)
{
    return 0x10000 + ((Lead - 0xD800) << 10) + (Trail - 0xDC00);
}

constexpr char32_t UnpairedStandIns = 0x100000;     // a plane of private use: no letter that nobody wrote

// --- iconv -------------------------------------------------------------------------------------------

/// An open conversion; starts each text in its initial state.
class TConversion
{
public:
    TConversion(const std::string& To, const std::string& From) : Handle(iconv_open(To.c_str(), From.c_str())) {}
    TConversion(TConversion&& Other) noexcept : Handle(std::exchange(Other.Handle, NoHandle)) {}
    TConversion& operator=(TConversion&&) = delete;
    ~TConversion()
    {
        if (IsOpen())
            iconv_close(Handle);
    }

    bool IsOpen() const { return Handle != NoHandle; }

    /// Appends what the front of `Text` converts to and removes it from `Text`. 0 when that was all of it,
    /// else EILSEQ for bytes without equivalent or EINVAL for a character cut short.
    int Run(std::string_view& Text, std::string& Result) const
    {
        iconv(Handle, nullptr, nullptr, nullptr, nullptr);
        char* In = const_cast<char*>(Text.data());  // iconv does not write to it
        auto Left = Text.size();
        int Error = Convert(&In, &Left, Result);
        if (Error == 0)                             // what a page with combining characters held back
            Error = Convert(nullptr, nullptr, Result);
        Text.remove_prefix(Text.size() - Left);
        return Error;
    }

private:
    static inline const iconv_t NoHandle = reinterpret_cast<iconv_t>(-1);

    int Convert(char** In, std::size_t* Left, std::string& Result) const
    {
        for (;;) {
            char Buffer[1024];
            char* Out = Buffer;
            std::size_t Room = sizeof Buffer;
            const bool Done = iconv(Handle, In, Left, &Out, &Room) != static_cast<std::size_t>(-1);
            const int Error = Done ? 0 : errno;
            Result.append(Buffer, Out);
            if (Error != E2BIG)
                return Error;
        }
    }

    iconv_t Handle;
};

/// The names under which iconv may know a page: bare numbers are those of IBM and Windows pages.
std::vector<std::string> IconvNames(std::string_view Name)
{
    const bool IsNumber = Name.find_first_not_of("0123456789") == Name.npos;
    if (IsNumber && !Name.empty())
        return {"CP" + std::string(Name), "IBM" + std::string(Name)};
    // An empty name would mean the locale's page, and what follows a slash allows replacements.
    if (Name.empty() || Name.find('/') != Name.npos || Name.find('\0') != Name.npos)
        return {};
    return {std::string(Name)};
}

// --- Pages -------------------------------------------------------------------------------------------

enum TUndefinedBytes { ubRefuse, ubStandIn };

/// One code page with its conversions to and from UTF-8.
class TPage
{
public:
    virtual ~TPage() = default;

    /// Appends `Text` as UTF-8. With ubRefuse false at bytes that are no text of the page.
    virtual bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const = 0;
    /// Appends UTF-8 as text of this page; false when a character does not exist in it.
    virtual bool Encode(std::string_view Text, std::string& Result) const = 0;
    virtual bool IsUtf8() const { return false; }
    /// True when text of this page is the same in UTF-8.
    virtual bool IsSameInUtf8(std::string_view) const { return false; }
};

class TUtf8Page final : public TPage
{
public:
    bool IsUtf8() const override { return true; }
    bool IsSameInUtf8(std::string_view Text) const override { return IsValidUtf8(Text); }

    bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const override
    {
        while (!Text.empty()) {
            const auto Size = ValidSize(Text);
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
class TTablePage final : public TPage
{
public:
    /// Nothing when some byte does not stand for a character of its own.
    static std::unique_ptr<TTablePage> Create(const TConversion& ToUtf8)
    {
        auto Page = std::make_unique<TTablePage>();
        for (int Byte = 0; Byte < 256; ++Byte)
            if (!Page->Fill(static_cast<unsigned char>(Byte), ToUtf8))
                return nullptr;
        Page->SortBytes();
        return Page;
    }

    bool IsSameInUtf8(std::string_view Text) const override { return HasAscii && IsAscii(Text); }

    bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const override
    {
        for (const char Char : Text) {
            const auto& [Utf8, IsDefined] = Characters[static_cast<unsigned char>(Char)];
            if (!IsDefined && Undefined == ubRefuse)
                return false;
            Result.append(Utf8);
        }
        return true;
    }

    bool Encode(std::string_view Text, std::string& Result) const override
    {
        while (!Text.empty()) {
            const auto Size = SequenceSize(Text.data(), Text.data() + Text.size());
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

    bool Fill(unsigned char Byte, const TConversion& ToUtf8)
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
        return Error != EINVAL && !Utf8.empty() && Utf8.size() == SequenceSize(Utf8.data(), Utf8.data() + Utf8.size());
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
class TIconvPage final : public TPage
{
public:
    TIconvPage(TConversion To, TConversion From) : ToUtf8(std::move(To)), FromUtf8(std::move(From)) {}

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
    TConversion ToUtf8, FromUtf8;
};

bool NamesUtf8(std::string_view Name)
{
    return SameText(Name, "UTF-8") || SameText(Name, "UTF8") || Name == "65001";
}

std::unique_ptr<TPage> CreatePage(std::string_view Name)
{
    if (NamesUtf8(Name))
        return std::make_unique<TUtf8Page>();
    for (const auto& IconvName : IconvNames(Name)) {
        TConversion ToUtf8("UTF-8", IconvName), FromUtf8(IconvName, "UTF-8");
        if (!ToUtf8.IsOpen() || !FromUtf8.IsOpen())
            continue;
        if (auto Page = TTablePage::Create(ToUtf8))
            return Page;
        return std::make_unique<TIconvPage>(std::move(ToUtf8), std::move(FromUtf8));
    }
    throw EConvertError(FormatText("Unknown code page '%s'", {Name}));
}

/// The page of that name, made when it is first asked for and then kept.
const TPage& PageOf(std::string_view Name)
{
    static std::map<std::string, std::unique_ptr<TPage>, std::less<>> Pages;
    const auto Found = Pages.find(Name);
    if (Found != Pages.end())
        return *Found->second;
    return *Pages.emplace(Name, CreatePage(Name)).first->second;
}

/// A code page that the program may set.
class TPageSetting
{
public:
    explicit TPageSetting(std::string InitialName) : FName(std::move(InitialName)), FPage(&PageOf(FName)) {}

    const std::string& Name() const { return FName; }
    const TPage& Page() const { return *FPage; }
    void Set(std::string_view NewName)
    {
        FPage = &PageOf(NewName);
        FName = NewName;
    }

private:
    std::string FName;
    const TPage* FPage;
};

TPageSetting& Ansi()
{
    static TPageSetting Setting("UTF-8");
    return Setting;
}

TPageSetting& Oem()
{
    static TPageSetting Setting("437");
    return Setting;
}

TPageSetting& Legacy()
{
    static TPageSetting Setting("windows-1252");
    return Setting;
}

[[noreturn]] void RaiseNoText(std::string_view PageName)
{
    throw EConvertError(FormatText("Text is not valid in code page '%s'", {PageName}));
}

std::string DecodeOrRaise(std::string_view Text, const TPage& Page, std::string_view PageName)
{
    std::string Result;
    if (!Page.Decode(Text, ubRefuse, Result))
        RaiseNoText(PageName);
    return Result;
}

/// Takes one character off the front of UTF-16, which is not empty.
char32_t TakePoint(std::u16string_view& Text)
{
    const char32_t First = Text[0];
    Text.remove_prefix(1);
    if (!IsSurrogate(First))
        return First;
    const char32_t Second = IsLead(First) && !Text.empty() ? Text[0] : 0;
    if (!IsTrail(Second))
        RaiseNoText("UTF-16");
    Text.remove_prefix(1);
    return PointOf(First, Second);
}

/// UTF-8 as process text; when that is UTF-8 too, nothing happens to it.
std::string ToAnsi(std::string Utf8)
{
    const auto& Page = Ansi().Page();
    if (Page.IsUtf8())
        return Utf8;
    if (!IsValidUtf8(Utf8))
        RaiseNoText("UTF-8");
    std::string Result;
    if (!Page.Encode(Utf8, Result))
        throw EConvertError(FormatText("'%s' has a character that does not exist in code page '%s'",
                                       {Utf8, AnsiCodePage()}));
    return Result;
}

} // namespace

bool AnsiIsUtf8() { return Ansi().Page().IsUtf8(); }

void AppendLatin1AsUtf8(std::string_view Text, std::string& Utf8)
{
    const char* First = Text.data();
    const char* const Last = First + Text.size();
    while (First != Last) {
        const char* const Stop = SkipAscii(First, Last);
        Utf8.append(First, Stop);
        First = Stop;
        for (; First != Last && static_cast<signed char>(*First) < 0; ++First)
            AppendUtf8(Utf8, static_cast<unsigned char>(*First));
    }
}

void AppendUtf16AsUtf8(std::string_view Bytes, std::string& Utf8)
{
    for (std::size_t I = 0; I + 1 < Bytes.size(); I += 2) {
        const char32_t Unit = LoadLittleEndian<std::uint16_t>(Bytes.data() + I);
        if (!IsSurrogate(Unit)) {
            AppendUtf8(Utf8, Unit);
            continue;
        }
        const char32_t Next = I + 3 < Bytes.size() ? LoadLittleEndian<std::uint16_t>(Bytes.data() + I + 2) : 0;
        if (IsLead(Unit) && IsTrail(Next)) {
            AppendUtf8(Utf8, PointOf(Unit, Next));
            I += 2;
        } else {
            AppendUtf8(Utf8, UnpairedStandIns + Unit);
        }
    }
}

bool IsValidUtf8(std::string_view Text) { return ValidSize(Text) == Text.size(); }

const std::string& AnsiCodePage() { return Ansi().Name(); }
const std::string& OemCodePage() { return Oem().Name(); }
const std::string& LegacyCodePage() { return Legacy().Name(); }

void SetAnsiCodePage(std::string_view Name) { Ansi().Set(Name); }
void SetOemCodePage(std::string_view Name) { Oem().Set(Name); }
void SetLegacyCodePage(std::string_view Name) { Legacy().Set(Name); }

std::string OemToAnsi(std::string_view Text)
{
    if (&Oem().Page() == &Ansi().Page())
        return std::string(Text);
    return ToAnsi(DecodeOrRaise(Text, Oem().Page(), OemCodePage()));
}

std::string Utf16ToAnsi(std::u16string_view Text)
{
    std::string Utf8;
    Utf8.reserve(Text.size());
    while (!Text.empty())
        AppendUtf8(Utf8, TakePoint(Text));
    return ToAnsi(std::move(Utf8));
}

std::string_view AnsiToUtf8(std::string_view Text, std::string& Buffer)
{
    const auto& Page = Ansi().Page();
    if (Page.IsSameInUtf8(Text))
        return Text;
    Buffer.clear();
    (Page.IsUtf8() ? Legacy().Page() : Page).Decode(Text, ubStandIn, Buffer);
    return Buffer;
}

std::string Utf8ToAnsi(std::string_view Text) { return ToAnsi(std::string(Text)); }

std::string CodePageToUtf8(std::string_view Text, std::string_view CodePage)
{
    return DecodeOrRaise(Text, PageOf(CodePage), CodePage);
}

} // namespace kv
