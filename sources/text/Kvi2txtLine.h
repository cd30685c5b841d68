// Kvi2txtLine - lines of text files and positions in them, for the files of Kvi2txt.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "KviSource.h"

namespace kv {

inline constexpr std::size_t MaxLineSize = 9999;    // two positions share one number
inline constexpr char MsgLineTooLong[] = "is longer than 9999 characters";

/// Where a record stands, for messages: "line 3", or "line 3 (line 5 of the file)" for programs that know no
/// qualifiers.
inline std::string LinePlace(std::size_t Number, std::size_t PlainNumber)
{
    return TKvISourcePosition{.Unit = "line",
                              .Number = static_cast<std::int64_t>(Number),
                              .FileLine = static_cast<std::int64_t>(PlainNumber)}
        .Text();
}

/// The beginning of a message: "Line 3 of orders.csv ".
inline std::string FileAndLine(const std::string& FileName, std::size_t Number, std::size_t PlainNumber)
{
    const auto Plain = " (" + std::to_string(PlainNumber) + " in the file)";
    return "Line " + std::to_string(Number) + (Number == PlainNumber ? "" : Plain) + " of " + FileName + " ";
}

/// `Text` from byte `First` to byte `Last`, both from 1, as far as it reaches.
inline std::string_view Slice(std::string_view Text, std::size_t First, std::size_t Last)
{
    if (First > Last || First > Text.size())
        return {};
    return Text.substr(First - 1, Last - First + 1);
}

} // namespace kv
