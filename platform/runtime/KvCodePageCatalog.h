// KvCodePageCatalog - all code pages that can be had, each with its conversions to and from UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// The character for a byte that a page leaves undefined: the control character of the same number, and past
/// them, from A0 on, one of the private use characters U+F7A0 to U+F7FF, so that no letter appears that
/// nobody wrote.
constexpr char32_t StandInFor(unsigned char Byte) { return Byte < 0xA0 ? Byte : 0xF700 + Byte; }

enum TUndefinedBytes { ubRefuse, ubStandIn };

class TCodePage
{
public:
    virtual ~TCodePage() = default;

    /// Appends `Text` as UTF-8. With ubRefuse false at bytes that are no text of the page.
    virtual bool Decode(std::string_view Text, TUndefinedBytes Undefined, std::string& Result) const = 0;
    /// Appends UTF-8 as text of this page; false when a character does not exist in it.
    virtual bool Encode(std::string_view Text, std::string& Result) const = 0;
    virtual bool IsUtf8() const { return false; }
    virtual bool IsSingleByte() const { return false; } ///< Every byte is a character.
    /// True when text of this page is the same in UTF-8.
    virtual bool IsSameInUtf8(std::string_view) const { return false; }
};

/// The page of that name, made when it is first asked for and then kept. Raises EConvertError "Unknown
/// code page '%s'".
const TCodePage& CodePageNamed(std::string_view Name);

} // namespace kv
