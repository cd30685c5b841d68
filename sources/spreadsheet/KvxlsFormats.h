// KvxlsFormats - the number formats of an Excel workbook, which alone tell dates from numbers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "KvSerials.h"

namespace kv {

/// The built-in formats by their index; empty where there is none.
extern const std::array<std::string_view, 50> BuiltInFormats;

/// What a pattern shows, by its letters outside of quotes, colours, escapes and "General": d, m and y, h and
/// s, and those of East Asia, e and g for years of an emperor, b for those of Buddha, aaa for the day of the
/// week. [h], [m] and [s] show durations; m is minutes beside hours or seconds.
TSerialKind KindOfPattern(std::string_view Pattern);
inline bool IsDatePattern(std::string_view Pattern) { return KindOfPattern(Pattern) != skNumber; }

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
    /// The workbook defines its next format, from 0: Excel 2 to 4 do not number them. The first is "General"
    /// in the user's language.
    void AddPattern(std::string_view Pattern);

    /// What cells of this XF record show. The number of a record that is not there counts as that of a
    /// format.
    TSerialKind KindOf(std::uint16_t Xf) const
    {
        return KindOfFormat(Xf < XfFormats.size() ? XfFormats[Xf] : Xf);
    }
    TSerialKind KindOfFormat(std::uint16_t Format) const
    {
        return Format < Kinds.size() ? Kinds[Format] : skNumber;
    }
    bool IsDate(std::uint16_t Xf) const { return KindOf(Xf) != skNumber; }
    bool IsDateFormat(std::uint16_t Format) const { return KindOfFormat(Format) != skNumber; }

private:
    void SetKind(std::uint16_t Format, TSerialKind Kind);

    bool PatternsDecide;
    std::vector<std::uint16_t> XfFormats;
    std::vector<TSerialKind> Kinds;                 // by format; numbers past the last
    std::uint16_t PatternCount = 0;
};

} // namespace kv
