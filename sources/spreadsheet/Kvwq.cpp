#include "Kvwq.h"

#include "KvPublish.h"

namespace kv {

TPublishedProperties TQuattroPro::PublishedProperties() const
{
    static constexpr std::string_view Versions[] = {"qvUnknown", "qvWQ1", "qvWQ2"};
    auto Properties = TWorksheetFile::PublishedProperties();
    Properties.push_back(Publish("Version", &TQuattroPro::Version, Versions));
    return Properties;
}

bool TQuattroPro::ReadVersion(std::uint16_t Number)
{
    Version = Number == 0x5120 ? qvWQ1 : qvUnknown;
    return Version != qvUnknown;
}

void TQuattroPro::ReadRange(const TKvRecord& Record)
{
    RaiseDimensions(Record.At<std::uint16_t>(2), Record.At<std::uint16_t>(6), Record.At<std::uint8_t>(0),
                    Record.At<std::uint8_t>(4));
}

TCellPlace TQuattroPro::PlaceOf(const TKvRecord& Cell) const
{
    const int Row = Extensions.Contains(seWideRows) ? Cell.At<std::uint16_t>(3)
                                                    : Cell.At<std::uint8_t>(2) * 256 +
                                                      Cell.At<std::uint8_t>(3);
    return {.Row = Row, .Column = Cell.At<std::uint8_t>(1)};
}

std::string_view TQuattroPro::LabelOf(const TKvRecord& Cell) const
{
    return Cell.From(7).Bytes();
}

std::string_view TQuattroPro::StringOf(const TKvRecord& Cell) const
{
    return Cell.Text(6, Cell.At<std::uint8_t>(5));
}

} // namespace kv
