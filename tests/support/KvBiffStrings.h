// KvBiffStrings - writes the shared strings of Excel 8 for tests, broken into records anywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// One shared string.
struct TBiffString
{
    std::u16string_view Text;
    bool IsWide = false;                            ///< 16 bits a character, else 8.
    int Runs = -1;                                  ///< Runs of rich text; -1: not rich.
    int Phonetic = -1;                              ///< Bytes of phonetic text; -1: none.
};

/// How the bytes of the strings are broken into an SST record and CONTINUE records.
struct TBiffBreaks
{
    /// Offsets in the body of an SST that holds everything. A break within the count and options of a
    /// string, or within another number, leaves that part of it behind as padding: it is whole in the
    /// next record.
    std::set<std::size_t> At;
    bool SwitchWidth = false;                       ///< Characters go on in the other width.
    std::optional<std::uint8_t> Option = {};        ///< In place of the option byte of characters that go on.
};

/// The records of these strings, broken also where a record has its greatest size, 8224 bytes.
std::string BiffSharedStrings(const std::vector<TBiffString>& Strings, const TBiffBreaks& Breaks = {});

/// The size of the body of an SST that holds everything.
std::size_t SizeOfSharedStrings(const std::vector<TBiffString>& Strings);

} // namespace kv
