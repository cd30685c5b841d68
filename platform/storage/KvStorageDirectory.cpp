#include "KvStorageDirectory.h"

#include <algorithm>
#include <cstring>

#include "KvByteCursor.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t EntrySize = 128;
constexpr std::size_t NameSize = 64;
constexpr std::uint32_t NoEntry = 0xFFFFFFFF;

/// The characters up to the first zero: what some writers state as the length of a name is wrong.
std::u16string NameUnits(std::string_view NameField)
{
    std::u16string Name(NameSize / 2, u'\0');
    std::memcpy(Name.data(), NameField.data(), NameSize);
    Name.resize(std::min(Name.find(u'\0'), Name.size()));
    return Name;
}

std::string AsciiName(std::u16string_view Name)
{
    std::string Text;
    for (const auto Unit : Name) {
        const char Bytes[] = {static_cast<char>(Unit >> 8), static_cast<char>(Unit & 0xFF)};
        if (Unit < 0x80)
            Text += Bytes[1];
        else
            Text += "\\u" + TextToHex({Bytes, 2});
    }
    return Text;
}

} // namespace

std::string TKvStorageEntry::Name() const
{
    const auto Units = NameUnits(NameField);
    try {
        return Utf16ToAnsi(Units);
    }
    catch (const EConvertError&) {
        return AsciiName(Units);
    }
}

std::size_t TKvStorageDirectory::Count() const
{
    return Bytes.size() / EntrySize;
}

TKvStorageEntry TKvStorageDirectory::Entry(std::uint32_t Index) const
{
    const TKvByteCursor In(Bytes.substr(Index * EntrySize, EntrySize));
    return {.NameField = In.BytesAt(0, NameSize),
            .Kind = static_cast<TKvStorageEntryKind>(In.At<std::uint8_t>(66)),
            .Left = In.At<std::uint32_t>(68),
            .Right = In.At<std::uint32_t>(72),
            .Child = In.At<std::uint32_t>(76),
            .FirstSector = In.At<std::uint32_t>(116),
            .Size = In.At<std::uint64_t>(120)};
}

std::vector<TKvStorageEntry> TKvStorageDirectory::EntriesOf(const TKvStorageEntry& Parent) const
{
    std::vector<TKvStorageEntry> Result;
    std::vector<TKvStorageEntry> Pending;           // those whose left side comes first
    std::vector<bool> Named(Count());
    for (auto Index = Parent.Child; Index != NoEntry || !Pending.empty();) {
        if (Index == NoEntry) {
            Result.push_back(Pending.back());
            Pending.pop_back();
            Index = Result.back().Right;
            continue;
        }
        if (Index >= Count())
            throw EFormatError(FormatText("directory entry %d does not exist", {std::to_string(Index)}));
        if (Named[Index])
            throw EFormatError(FormatText("directory entry %d is named twice", {std::to_string(Index)}));
        Named[Index] = true;
        Pending.push_back(Entry(Index));
        Index = Pending.back().Left;
    }
    return Result;
}

} // namespace kv
