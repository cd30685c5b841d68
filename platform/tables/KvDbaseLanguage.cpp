#include "KvDbaseLanguage.h"

#include <algorithm>
#include <iterator>

#include "KvCodePageCatalog.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

struct TDriver
{
    std::uint8_t Byte;
    std::string_view CodePage;
};

constexpr TDriver Drivers[] = {                     // sorted by Byte
    {0x01, "437"}, {0x02, "850"}, {0x03, "1252"}, {0x04, "MACINTOSH"},
    {0x08, "865"}, {0x09, "437"}, {0x0A, "850"}, {0x0B, "437"}, {0x0D, "437"}, {0x0E, "850"},
    {0x0F, "437"}, {0x10, "850"}, {0x11, "437"}, {0x12, "850"}, {0x13, "932"}, {0x14, "850"},
    {0x15, "437"}, {0x16, "850"}, {0x17, "865"}, {0x18, "437"}, {0x19, "437"}, {0x1A, "850"},
    {0x1B, "437"}, {0x1C, "863"}, {0x1D, "850"}, {0x1F, "852"}, {0x22, "852"}, {0x23, "852"},
    {0x24, "860"}, {0x25, "850"}, {0x26, "866"}, {0x37, "850"}, {0x40, "852"},
    {0x4D, "936"}, {0x4E, "949"}, {0x4F, "950"}, {0x50, "874"},
    {0x58, "1252"}, {0x59, "1252"},                 // 57: that of Windows, whichever it was
    {0x64, "852"}, {0x65, "866"}, {0x66, "865"}, {0x67, "861"},
    {0x68, "895"}, {0x69, "620"},                   // Kamenicky and Mazovia
    {0x6A, "737"}, {0x6B, "857"}, {0x6C, "863"},
    {0x78, "950"}, {0x79, "949"}, {0x7A, "936"}, {0x7B, "932"}, {0x7C, "874"}, {0x7D, "1255"}, {0x7E, "1256"},
    {0x86, "737"}, {0x87, "852"}, {0x88, "857"},
    {0x96, "MAC-CYRILLIC"}, {0x97, "MAC-CENTRALEUROPE"}, {0x98, "10006"},
    {0xC8, "1250"}, {0xC9, "1251"}, {0xCA, "1254"}, {0xCB, "1253"}, {0xCC, "1257"},
};

/// Windows drivers of other pages than 1252.
struct TWindowsDriver
{
    std::string_view Language;                      // what follows "DBWIN"
    std::string_view CodePage;
};

constexpr TWindowsDriver WindowsDrivers[] = {
    {"CZ", "1250"}, {"HU", "1250"}, {"PL", "1250"}, {"RU", "1251"}, {"GR", "1253"}, {"TU", "1254"},
    {"HE", "1255"},
};

bool IsKnownPage(const std::string& Name)
{
    try {
        CodePageNamed(Name);
        return true;
    }
    catch (const EConvertError&) {
        return false;
    }
}

bool IsNumber(std::string_view Text)
{
    return !Text.empty() && Text.find_first_not_of("0123456789") == Text.npos;
}

} // namespace

std::string_view CodePageOfDriver(std::uint8_t LanguageDriver)
{
    static_assert(std::ranges::is_sorted(Drivers, {}, &TDriver::Byte));
    const auto* const Found = std::ranges::lower_bound(Drivers, LanguageDriver, {}, &TDriver::Byte);
    return Found != std::end(Drivers) && Found->Byte == LanguageDriver ? Found->CodePage : std::string_view();
}

std::string_view CodePageOfDriver(std::string_view LanguageDriver)
{
    constexpr std::string_view Maker = "DB", Windows = "WIN", Digits = "0123456789";
    if (!LanguageDriver.starts_with(Maker))
        return {};
    const auto Name = LanguageDriver.substr(Maker.size());
    if (!Name.starts_with(Windows)) {
        const auto Page = Name.substr(0, Name.find_first_not_of(Digits));
        return Page.size() == 3 ? Page : std::string_view();
    }
    const auto Language = Name.substr(Windows.size(), 2);
    const auto* const Found = std::ranges::find(WindowsDrivers, Language, &TWindowsDriver::Language);
    return Found != std::end(WindowsDrivers) ? Found->CodePage : "1252";
}

std::string CodePageOfLabel(std::string_view Label)
{
    constexpr std::string_view Latin = "8859";      // "88591" and "8859-15" are parts of ISO 8859
    Label = Trim(Label.substr(0, Label.find_first_of("\r\n")));
    for (const std::string_view Maker : {"ANSI ", "OEM ", "ISO "})
        if (SameText(Label.substr(0, Maker.size()), Maker))
            Label = Trim(Label.substr(Maker.size()));
    auto Name = std::string(Label);
    if (Name.starts_with(Latin) && Name.size() > Latin.size())
        Name = "ISO-8859-" + Name.substr(Name[Latin.size()] == '-' ? Latin.size() + 1 : Latin.size());
    else if (!IsNumber(Label) && SameText(Label.substr(0, 2), "CP") && IsNumber(Label.substr(2)))
        Name = Label.substr(2);                     // in the words of KvCodePage
    return IsKnownPage(Name) ? Name : std::string();
}

} // namespace kv
