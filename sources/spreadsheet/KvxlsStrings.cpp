#include "KvxlsStrings.h"

#include <algorithm>

#include "KvException.h"
#include "KvText.h"
#include "KvxlsText.h"

namespace kv {

namespace {

enum TStringOptions : std::uint8_t { soWide = 0x01, soPhonetic = 0x04, soRichText = 0x08 };

constexpr std::size_t HeaderSize = 8;               // of an SST
constexpr std::size_t MinStringSize = 3;
constexpr std::size_t RunSize = 4;

constexpr char MsgContinueMissing[] = "CONTINUE record missing";
constexpr char MsgOverflow[] = "SST Buffer owerflow (%d)";
constexpr char MsgUnknownString[] = "Unknown string [%s] in SST";
constexpr char MsgUnhandledString[] = "Unhandled string in SST [%s]";

std::string HexByte(std::uint8_t Byte)
{
    const char Char = static_cast<char>(Byte);
    return TextToHex({&Char, 1});
}

} // namespace

// TKvxlsStringReader

TKvxlsStringReader::TKvxlsStringReader(TKvRecords& TheRecords, std::size_t Position)
    : Records(TheRecords),
      In(Records.Record().From(Position))
{
}

std::string_view TKvxlsStringReader::TakeBytes(std::size_t Count)
{
    if (In.Remaining() < Count)
        throw Exception(FormatText(MsgOverflow, {std::to_string(In.Position() + Count)}));
    return In.TakeBytes(Count);
}

std::string_view TKvxlsStringReader::TakeWhole(std::size_t Count)
{
    if (In.Remaining() < Count)
        NextRecord();
    return TakeBytes(Count);
}

void TKvxlsStringReader::NextRecord()
{
    if (!Records.IsNext(rcContinue))
        throw Exception(MsgContinueMissing);
    Records.Next();
    In = Records.Record().From(0);
}

void TKvxlsStringReader::TakeCharacters(std::size_t Count, bool AreWide, std::string& Text)
{
    Replaced = false;
    if (In.Remaining() < (AreWide ? 2 * Count : Count))
        TakeBrokenCharacters(Count, AreWide, Text);
    else if (AreWide)
        Append(In.TakeBytes(2 * Count), Text);
    else
        AppendCompressed(In.TakeBytes(Count), Text);
}

/// Characters that are continued in other records. Wide ones are put together before they are converted,
/// because a break may stand within a pair of surrogates, and even within a character.
void TKvxlsStringReader::TakeBrokenCharacters(std::size_t Count, bool AreWide, std::string& Text)
{
    std::string Wide;
    for (auto Needed = AreWide ? 2 * Count : Count;;) {
        const auto Part = In.TakeBytes(std::min(Needed, In.Remaining()));
        if (AreWide)
            Wide.append(Part);
        else
            AppendCompressed(Part, Text);
        Needed -= Part.size();
        if (Needed == 0)
            break;
        NextRecord();
        const bool AreNextWide = TakeOptionOfRest();
        if (AreWide && !AreNextWide) {
            if (Wide.size() % 2 != 0)
                Records.Record().Raise("half a character is missing");
            Append(Wide, Text);
            Wide.clear();
            Needed /= 2;
        } else if (!AreWide && AreNextWide) {
            Needed *= 2;
        }
        AreWide = AreNextWide;
    }
    Append(Wide, Text);
}

void TKvxlsStringReader::Append(std::string_view Wide, std::string& Text)
{
    Replaced = !AppendWide(Wide, Text) || Replaced;
}

/// True when what follows has 16 bits a character.
bool TKvxlsStringReader::TakeOptionOfRest()
{
    const auto Option = static_cast<std::uint8_t>(TakeBytes(1)[0]);
    if (Option > soWide)
        throw Exception(FormatText(MsgUnknownString, {HexByte(Option)}));
    return Option == soWide;
}

void TKvxlsStringReader::Skip(std::size_t Count)
{
    while (In.Remaining() < Count) {
        Count -= In.Remaining();
        NextRecord();
    }
    In.Skip(Count);
}

// TKvxlsSharedStrings

void TKvxlsSharedStrings::Read(TKvRecords& Records, bool AllStrings)
{
    Characters.clear();
    Ends.clear();
    Replaced.clear();
    TKvxlsStringReader In(Records, 0);
    const auto Unique = LoadLittleEndian<std::uint32_t>(In.TakeBytes(HeaderSize).data() + 4);
    // The count is only a promise: no more strings than the bytes of the file can hold.
    Ends.reserve(std::min<std::size_t>(Unique, Records.Remaining() / MinStringSize));
    for (std::uint32_t I = 0; I < Unique; ++I)
        ReadString(In, AllStrings);
}

void TKvxlsSharedStrings::ReadString(TKvxlsStringReader& In, bool AllStrings)
{
    const auto Header = In.TakeWhole(MinStringSize);
    const auto Count = LoadLittleEndian<std::uint16_t>(Header.data());
    const auto Options = static_cast<std::uint8_t>(Header[2]);
    const bool HasPhonetic = AllStrings && (Options & soPhonetic) != 0;
    const bool IsRich = (Options & soRichText) != 0;
    if (Options > soWide && !IsRich && !HasPhonetic)
        throw Exception(FormatText(MsgUnhandledString, {HexByte(Options)}));
    const std::size_t Runs = IsRich ? In.Take<std::uint16_t>() : 0;
    const std::size_t Extra = HasPhonetic ? In.Take<std::uint32_t>() : 0;
    In.TakeCharacters(Count, (Options & soWide) != 0, Characters);
    if (In.HasReplaced())
        Replaced.push_back(Ends.size());
    if (AllStrings)
        In.Skip(Runs * RunSize + Extra);
    else
        In.TakeWhole(Runs * RunSize);
    Ends.push_back(Characters.size());
}

} // namespace kv
