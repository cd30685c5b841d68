// Kvwks - reads the worksheets of Lotus 1-2-3 and Symphony (.wks, .wk1, .wk2, .wr1).
//
//   record           id   body
//   begin            00   version:u16
//   range            06   firstcol:u16 firstrow:u16 lastcol:u16 lastrow:u16
//   blank            0C   format:u8 col:u16 row:u16
//   integer          0D   format:u8 col:u16 row:u16  value:u16
//   number           0E   format:u8 col:u16 row:u16  value:f64
//   label            0F   format:u8 col:u16 row:u16  prefix:u8 text:u8[] 00
//   formula          10   format:u8 col:u16 row:u16  result:f64 size:u16 code:u8[size]
//   column widths    24   first:u8 last:u8 width:u16
//   string           33   format:u8 col:u16 row:u16  text:u8[] 00
#pragma once

#include "KvWorksheets.h"

namespace kv {

enum TWKSVersion { wvUnknown, wvWKS1, wvWKS2, wvWR1 };

/// Raises "File is not a Lotus 1-2-3 file" for another one. A column from 256 on is raised like any other;
/// the model counts its values and keeps none.
class TLotus123 final : public TWorksheetFile
{
public:
    explicit TLotus123(TComponent* TheOwner = nullptr) : TWorksheetFile(TheOwner, 0x24, sdExcel) {}

    std::string_view ClassName() const override { return "TLotus123"; }
    TPublishedProperties PublishedProperties() const override;

    TWKSVersion Version = wvUnknown;                ///< Of the last file read.

protected:
    bool ReadVersion(std::uint16_t Number) override;
    std::string_view NotThisFormat() const override { return "File is not a Lotus 1-2-3 file"; }
    void ReadRange(const TKvRecord& Record) override;
    TCellPlace PlaceOf(const TKvRecord& Cell) const override;
    std::string_view LabelOf(const TKvRecord& Cell) const override;
    std::string_view StringOf(const TKvRecord& Cell) const override;
};

} // namespace kv
