// Kvwq - reads the worksheets of Quattro Pro for DOS (.wq1).
//
//   record           id   body
//   begin            00   version:u16
//   range            06   firstcol:u8 0 firstrow:u16 lastcol:u8 0 lastrow:u16
//   column widths    08   first:u8 last:u8 width:u16
//   blank            0C   format:u8 col:u8 row:u8[3]
//   integer          0D   format:u8 col:u8 row:u8[3]  value:u16
//   number           0E   format:u8 col:u8 row:u8[3]  value:f64
//   label            0F   format:u8 col:u8 row:u8[3]  prefix:u8 size:u8 text:u8[]
//   formula          10   format:u8 col:u8 row:u8[3]  result:f64 size:u16 ...
//   string           33   format:u8 col:u8 row:u8[3]  size:u8 text:u8[size]
//
// Of the three bytes of the row the first counts 256 and the second 1. What Quattro Pro writes there is a
// zero and the row in 16 bits, low byte first: up to row 255 it is the same.
#pragma once

#include "KvWorksheets.h"

namespace kv {

enum TWQVersion { qvUnknown, qvWQ1, qvWQ2 };

/// Raises "File is not a QuattroPro file" for another one.
class TQuattroPro final : public TWorksheetFile
{
public:
    explicit TQuattroPro(TComponent* TheOwner = nullptr) : TWorksheetFile(TheOwner, 0x08, sdQuattro) {}

    std::string_view ClassName() const override { return "TQuattroPro"; }
    TPublishedProperties PublishedProperties() const override;

    TWQVersion Version = qvUnknown;                 ///< Of the last file read; never qvWQ2.

protected:
    bool ReadVersion(std::uint16_t Number) override;
    std::string_view NotThisFormat() const override { return "File is not a QuattroPro file"; }
    void ReadRange(const TKvRecord& Record) override;
    TCellPlace PlaceOf(const TKvRecord& Cell) const override;
    std::string_view LabelOf(const TKvRecord& Cell) const override;
    std::string_view StringOf(const TKvRecord& Cell) const override;
};

} // namespace kv
