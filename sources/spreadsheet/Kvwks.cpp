#include "Kvwks.h"

#include "KvPublish.h"

namespace kv {

TPublishedProperties TLotus123::PublishedProperties() const
{
    static constexpr std::string_view Versions[] = {"wvUnknown", "wvWKS1", "wvWKS2", "wvWR1"};
    auto Properties = TWorksheetFile::PublishedProperties();
    Properties.push_back(Publish("Version", &TLotus123::Version, Versions));
    return Properties;
}

bool TLotus123::ReadVersion(std::uint16_t Number)
{
    switch (Number) {
    case 0x0404: Version = wvWKS1; break;
    case 0x0405: Version = wvWKS2; break;
    case 0x0406: Version = wvWR1; break;
    default:     Version = wvUnknown; break;
    }
    return Version != wvUnknown;
}

void TLotus123::ReadRange(const TKvRecord& Record)
{
    RaiseDimensions(Record.At<std::uint16_t>(2), Record.At<std::uint16_t>(6), Record.At<std::uint16_t>(0),
                    Record.At<std::uint16_t>(4));
}

TCellPlace TLotus123::PlaceOf(const TKvRecord& Cell) const
{
    return {.Row = Cell.At<std::uint16_t>(3), .Column = Cell.At<std::uint16_t>(1)};
}

std::string_view TLotus123::LabelOf(const TKvRecord& Cell) const
{
    constexpr std::size_t TextAt = 6;
    constexpr std::size_t AllButText = TextAt + 1;  // a zero follows
    Cell.Text(0, AllButText);
    return Cell.Text(TextAt, Cell.Size() - AllButText);
}

std::string_view TLotus123::StringOf(const TKvRecord& Cell) const
{
    const auto Text = Cell.From(5).Bytes();
    return Text.substr(0, Text.find('\0'));
}

} // namespace kv
