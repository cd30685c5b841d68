// KvxlsStrings - strings of Excel 8, which run on from record to record.
//
//   string   := count:u16le  options:u8  [runs:u16le]  [extra:u32le]  characters  run:u8[4]*  extra:u8*
//   options  := bit 0: characters have 16 bits   bit 2: extra (phonetic text)   bit 3: runs (rich text)
//   SST      := total:u32le  unique:u32le  string[unique]
//   CONTINUE := the rest of what the record before it holds; characters go on after an option byte of their
//               own, 0 or 1
//
// Nothing but characters is kept.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KvRecords.h"

namespace kv {

constexpr std::uint16_t rcContinue = 0x003C;        ///< The id of a CONTINUE record.

/// Reads the current record of a stream and the CONTINUE records after it, as far as they are needed. A
/// record that ends early raises Exception "CONTINUE record missing" when no other follows.
class TKvxlsStringReader
{
public:
    /// Begins at `Position` of the body of the current record.
    TKvxlsStringReader(TKvRecords& Records, std::size_t Position);

    /// The next `Count` bytes of the record. Raises Exception "SST Buffer owerflow (%d)" with the position
    /// that they end at when that is past it.
    std::string_view TakeBytes(std::size_t Count);
    /// The next number; all of it stands in the next record when it does not fit into this one.
    template <CKvPlainNumber T> T Take()
    {
        return LoadLittleEndian<T>(TakeWhole(sizeof(T)).data());
    }
    /// The same for several numbers that stand together.
    std::string_view TakeWhole(std::size_t Count);

    /// Appends `Count` characters. Raises Exception "Unknown string [%x] in SST" for an option byte of a
    /// CONTINUE that is neither 0 nor 1.
    void TakeCharacters(std::size_t Count, bool AreWide, std::string& Text);
    void Skip(std::size_t Count);

    /// The process's code page lacks some of the characters last taken, which became "?".
    bool HasReplaced() const { return Replaced; }

private:
    void NextRecord();
    void Append(std::string_view Wide, std::string& Text);
    void TakeBrokenCharacters(std::size_t Count, bool AreWide, std::string& Text);
    bool TakeOptionOfRest();

    TKvRecords& Records;
    TKvByteCursor In;                               // over the body of the current record
    bool Replaced = false;
};

/// The shared strings of a workbook, by their index.
class TKvxlsSharedStrings
{
public:
    /// Reads the current record, an SST, and those that continue it, of which the last is current then.
    /// Besides the errors of the reader raises Exception "Unhandled string in SST [%x]" for other options
    /// than 0, 1 and rich text. `AllStrings` lets strings have phonetic text and the runs of rich text go on
    /// from record to record; without it runs that do not fit into the record all stand in the next one.
    void Read(TKvRecords& Records, bool AllStrings);

    std::size_t Count() const { return Ends.size(); }
    /// True when `Text` is one of them, or a part of it.
    bool Holds(std::string_view Text) const
    {
        const std::less_equal<> IsUpTo;
        return IsUpTo(Characters.data(), Text.data()) &&
               IsUpTo(Text.data() + Text.size(), Characters.data() + Characters.size());
    }
    /// The process's code page lacked characters of this one, which became "?".
    bool IsReplaced(std::size_t Index) const
    {
        return !Replaced.empty() && std::binary_search(Replaced.begin(), Replaced.end(), Index);
    }
    /// Process text, valid until the next Read.
    std::string_view operator[](std::size_t Index) const
    {
        const auto Begin = Index == 0 ? 0 : Ends[Index - 1];
        return std::string_view(Characters).substr(Begin, Ends[Index] - Begin);
    }

private:
    void ReadString(TKvxlsStringReader& In, bool AllStrings);

    std::string Characters;                         // of all strings, one after the other
    std::vector<std::size_t> Ends;
    std::vector<std::size_t> Replaced;              // indexes, ascending
};

} // namespace kv
