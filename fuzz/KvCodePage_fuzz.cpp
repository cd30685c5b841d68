// Any bytes as text of any page: what comes out is valid, and what goes back is what came in.
#include "KvCodePage.h"

#include <bit>
#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvUtf8.h"

namespace {

using namespace kv;

struct TPage
{
    std::string_view Name;
    bool IsSingleByte;
};

constexpr TPage Pages[] = {{"UTF-8", false}, {"windows-1252", true}, {"437", true},      {"1253", true},
                           {"857", true},    {"932", false},         {"GB18030", false}, {"1258", false}};

/// Decodes character by character and judges the numbers, where the library judges bytes.
bool IsValidByTheNumbers(std::string_view Text)
{
    static constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    for (std::size_t I = 0; I < Text.size();) {
        const auto Lead = static_cast<unsigned char>(Text[I]);
        const auto Size = Lead < 0x80 ? 1u : static_cast<unsigned>(std::countl_one(Lead));
        if ((Lead >= 0x80 && Size < 2) || Size > 4 || Text.size() - I < Size)
            return false;
        char32_t Point = Size == 1 ? Lead : Lead & (0x7Fu >> Size);
        for (std::size_t J = 1; J < Size; ++J) {
            const auto Byte = static_cast<unsigned char>(Text[I + J]);
            if ((Byte & 0xC0) != 0x80)
                return false;
            Point = Point << 6 | (Byte & 0x3F);
        }
        if (Point < Smallest[Size] || Point > 0x10FFFF || (Point >= 0xD800 && Point <= 0xDFFF))
            return false;
        I += Size;
    }
    return true;
}

/// What `Conversion` gives, or nothing when it refuses.
template <class TConversion> std::string TextOrNone(TConversion Conversion)
{
    try {
        return Conversion();
    } catch (const EConvertError&) {
        return {};
    }
}

void CheckToUtf8(std::string_view Text, const TPage& Page)
{
    std::string Buffer;
    const std::string Utf8(AnsiToUtf8(Text, Buffer));
    Require(IsValidUtf8(Utf8));
    if (Page.IsSingleByte)
        Require(Utf8ToAnsi(Utf8) == Text);
}

void CheckFromUtf8(std::string_view Text, const TPage& Page)
{
    const auto Ansi = TextOrNone([&] { return Utf8ToAnsi(Text); });
    std::string Buffer;
    if (!Ansi.empty() && Page.IsSingleByte)
        Require(AnsiToUtf8(Ansi, Buffer) == Text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const auto& Page = Input.TakeOneOf(Pages);
    const auto& OtherPage = Input.TakeOneOf(Pages);
    const std::string Text(Input.TakeRest());
    SetAnsiCodePage(Page.Name);
    SetOemCodePage(OtherPage.Name);
    SetLegacyCodePage(OtherPage.Name);

    Require(IsValidUtf8(Text) == IsValidByTheNumbers(Text));
    CheckToUtf8(Text, Page);
    CheckFromUtf8(Text, Page);
    TextOrNone([&] { return OemToAnsi(Text); });
    Require(IsValidUtf8(TextOrNone([&] { return CodePageToUtf8(Text, OtherPage.Name); })));

    std::u16string Units(Text.size() / 2, u'\0');
    if (!Units.empty())
        std::memcpy(Units.data(), Text.data(), 2 * Units.size());
    SetAnsiCodePage("UTF-8");
    const auto FromUnits = TextOrNone([&] { return Utf16ToAnsi(Units); });
    Require(FromUnits ==
            TextOrNone([&] { return CodePageToUtf8(Text.substr(0, 2 * Units.size()), "UTF-16LE"); }));
    return 0;
}
