// KvxlsFormats - the number formats of an Excel workbook, which alone tell dates from numbers.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kv {

/// The built-in formats by their index; empty where there is none.
extern const std::array<std::string_view, 50> BuiltInFormats;

/// True for a pattern that shows a date, a time or a duration: one of the letters d, m, y, h, s outside of
/// quotes, colours, escapes and "General".
bool IsDatePattern(std::string_view Pattern);

/// The formats of one workbook. A cell names an XF record, from 0, and that record a format.
class TKvxlsFormats
{
public:
    /// `PatternsDecide`: dates are all formats with a date pattern, the user's and the built-in ones of
    /// every language. Otherwise only the built-in formats 14 to 22 are.
    explicit TKvxlsFormats(bool PatternsDecide = false);

    /// The next XF record names this format.
    void AddXf(std::uint16_t Format) { XfFormats.push_back(Format); }
    void ClearXfs() { XfFormats.clear(); }
    bool HasXfs() const { return !XfFormats.empty(); }

    /// The workbook defines the format `Format`.
    void SetPattern(std::uint16_t Format, std::string_view Pattern);
    /// The workbook defines its next format, from 0: Excel 2 to 4 do not number them.
    void AddPattern(std::string_view Pattern) { SetPattern(PatternCount++, Pattern); }

    /// True when cells of this XF record are dates. The number of a record that is not there counts as
    /// that of a format.
    bool IsDate(std::uint16_t Xf) const { return IsDateFormat(Xf < XfFormats.size() ? XfFormats[Xf] : Xf); }
    bool IsDateFormat(std::uint16_t Format) const { return DateFormats[Format]; }

private:
    bool PatternsDecide;
    std::vector<std::uint16_t> XfFormats;
    std::bitset<0x10000> DateFormats;
    std::uint16_t PatternCount = 0;
};

} // namespace kv
