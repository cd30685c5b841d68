#include "KvText.h"

#include <algorithm>
#include <cstdint>

#include "KvException.h"

namespace kv {

namespace {

constexpr char UpperAscii(char Letter)
{
    return Letter >= 'a' && Letter <= 'z' ? static_cast<char>(Letter - 'a' + 'A') : Letter;
}

/// The value of a hexadecimal digit, or -1.
constexpr int HexDigit(char Digit)
{
    if (Digit >= '0' && Digit <= '9')
        return Digit - '0';
    const auto Letter = UpperAscii(Digit);
    return Letter >= 'A' && Letter <= 'F' ? Letter - 'A' + 10 : -1;
}

} // namespace

std::string UpperCase(std::string_view Text)
{
    std::string Result(Text);
    std::ranges::transform(Result, Result.begin(), UpperAscii);
    return Result;
}

bool SameText(std::string_view A, std::string_view B)
{
    return std::ranges::equal(A, B, {}, UpperAscii, UpperAscii);
}

std::vector<std::string> SplitNames(std::string_view Text, char Separator)
{
    std::vector<std::string> Names;
    while (!Text.empty()) {
        const auto End = std::min(Text.find(Separator), Text.size());
        if (End > 0)
            Names.emplace_back(Text.substr(0, End));
        Text.remove_prefix(std::min(End + 1, Text.size()));
    }
    return Names;
}

std::string TextToHex(std::string_view Text)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string Result;
    Result.reserve(2 * Text.size());
    for (const char Char : Text) {
        const auto Byte = static_cast<std::uint8_t>(Char);
        Result += Digits[Byte >> 4];
        Result += Digits[Byte & 15];
    }
    return Result;
}

std::string HexToText(std::string_view Hex)
{
    std::string Result;
    Result.reserve(Hex.size() / 2);
    for (; Hex.size() >= 2; Hex.remove_prefix(2)) {
        const int High = HexDigit(Hex[0]), Low = HexDigit(Hex[1]);
        if (High < 0 || Low < 0)
            throw EConvertError(FormatText("'$%s' is not a valid integer value", {Hex.substr(0, 2)}));
        Result += static_cast<char>(High << 4 | Low);
    }
    return Result;
}

std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Arguments)
{
    std::string Result;
    const auto* Argument = Arguments.begin();
    for (std::size_t I = 0; I < Pattern.size(); ++I) {
        const auto Place = Pattern.substr(I, 2);
        if (Argument != Arguments.end() && (Place == "%s" || Place == "%d")) {
            Result += *Argument++;
            ++I;
        } else {
            Result += Pattern[I];
        }
    }
    return Result;
}

} // namespace kv
