#include "KvRecords.h"

#include <string>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

/// "00FD"
std::string HexId(std::uint16_t Id)
{
    const char HighByteFirst[] = {static_cast<char>(Id >> 8), static_cast<char>(Id & 0xFF)};
    return TextToHex({HighByteFirst, sizeof HighByteFirst});
}

} // namespace

void TKvRecord::Raise(std::string_view What) const
{
    throw EFormatError(FormatText("Record 0x%s at offset %d: %s", {HexId(Id), std::to_string(Offset), What}));
}

void TKvRecord::RaiseTooShort(std::size_t Needed) const
{
    throw EFormatError(FormatText("Record 0x%s at offset %d is too short: %d bytes, %d are needed",
                                  {HexId(Id), std::to_string(Offset), std::to_string(Size()),
                                   std::to_string(Needed)}));
}

std::optional<TKvRecord> TKvRecords::At(std::size_t Offset) const
{
    TKvRecords There(Bytes());
    const auto Size = There.Remaining();
    if (Offset > Size || Size - Offset < TKvRecord::HeaderSize)
        return {};
    There.Seek(Offset);
    const auto Body = There.In.At<std::uint16_t>(Offset + 2);
    if (Size - Offset - TKvRecord::HeaderSize < Body)
        return {};
    There.Next();
    return There.FRecord;
}

void TKvRecords::RequirePadding() const
{
    if (In.BytesAt(In.Position(), In.Remaining()).find_first_not_of('\0') == std::string_view::npos)
        return;
    throw EFormatError(FormatText("File is truncated: it ends within the header of the record at offset %d",
                                  {std::to_string(In.Offset())}));
}

void TKvRecords::RaiseTruncatedBody(std::uint16_t Id, std::size_t Size) const
{
    const auto Offset = std::to_string(In.Offset() - TKvRecord::HeaderSize);
    throw EFormatError(FormatText("File is truncated: record 0x%s at offset %d needs %d bytes, %d are left",
                                  {HexId(Id), Offset, std::to_string(Size), std::to_string(In.Remaining())}));
}

} // namespace kv
