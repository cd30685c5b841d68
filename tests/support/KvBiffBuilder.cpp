#include "KvBiffBuilder.h"

#include <bit>

namespace kv {

namespace {

TBytes Cell(unsigned Row, unsigned Col) { return TBytes().U16(Row).U16(Col); }

TBytes OldCell(unsigned Row, unsigned Col, std::string_view Attributes)
{
    return Cell(Row, Col).Text(Attributes);
}

std::string SpecialResult(unsigned Kind, unsigned Value)
{
    return TBytes().U8(Kind).U8(0).U8(Value).Zeros(3).U16(0xFFFF);
}

std::size_t SizeOf(TBiffVersion Version, std::string_view Records)
{
    return TBiffBuilder(Version).Bof().Eof().Size() + Records.size();
}

} // namespace

// TBiffBuilder

TBiffBuilder& TBiffBuilder::Record(std::uint16_t Id, std::string_view Body)
{
    Bytes += TBytes().U16(Id).U16(static_cast<unsigned>(Body.size())).Text(Body).Str();
    return *this;
}

TBiffBuilder& TBiffBuilder::Add(const TBiffBuilder& Other)
{
    return Add(Other.Bytes);
}

TBiffBuilder& TBiffBuilder::Add(std::string_view Records)
{
    Bytes += Records;
    return *this;
}

TBiffBuilder& TBiffBuilder::Bof(TBiffPart Part)
{
    switch (Version) {
    case bv2: return Record(0x0009, TBytes().U16(0x0200).U16(Part));
    case bv3: return Record(0x0209, TBytes().U16(0x0300).U16(Part).U16(0));
    case bv4: return Record(0x0409, TBytes().U16(0x0400).U16(Part).U16(0));
    case bv5: return Record(0x0809, TBytes().U16(0x0500).U16(Part).U16(0).U16(0));
    case bv8: return Record(0x0809, TBytes().U16(0x0600).U16(Part).U16(0).U16(0).U32(0).U32(0));
    }
    return *this;
}

TBiffBuilder& TBiffBuilder::Format(unsigned Index, std::string_view Pattern)
{
    const auto Size = static_cast<unsigned>(Pattern.size());
    switch (Version) {
    case bv2:
    case bv3: return Record(0x001E, TBytes().U8(Size).Text(Pattern));
    case bv4: return Record(0x041E, TBytes().U16(0).U8(Size).Text(Pattern));
    case bv5: return Record(0x041E, TBytes().U16(Index).U8(Size).Text(Pattern));
    case bv8: return Record(0x041E, TBytes().U16(Index).U16(Size).U8(0).Text(Pattern));
    }
    return *this;
}

TBiffBuilder& TBiffBuilder::Xf(unsigned Format)
{
    switch (Version) {
    case bv2: return Record(0x0043, TBytes().U8(0).U8(0).U8(Format | 0xC0).U8(0)); // the high bits protect
    case bv3: return Record(0x0243, TBytes().U8(0).U8(Format).Zeros(10));
    case bv4: return Record(0x0443, TBytes().U8(0).U8(Format).Zeros(10));
    case bv5: return Record(0x00E0, TBytes().U16(0).U16(Format).Zeros(12));
    case bv8: return Record(0x00E0, TBytes().U16(0).U16(Format).Zeros(16));
    }
    return *this;
}

TBiffBuilder& TBiffBuilder::Dimensions(unsigned FirstRow, unsigned EndRow, unsigned FirstCol, unsigned EndCol)
{
    if (Version == bv8)
        return Record(0x0200, TBytes().U32(FirstRow).U32(EndRow).U16(FirstCol).U16(EndCol).U16(0));
    const auto Extent = TBytes().U16(FirstRow).U16(EndRow).U16(FirstCol).U16(EndCol);
    return Version == bv2 ? Record(0x0000, Extent) : Record(0x0200, TBytes(Extent).U16(0));
}

TBiffBuilder& TBiffBuilder::Blank2(unsigned Row, unsigned Col, std::string_view Attributes)
{
    return Record(0x0001, OldCell(Row, Col, Attributes));
}

TBiffBuilder& TBiffBuilder::Integer2(unsigned Row, unsigned Col, std::string_view Attributes, unsigned Value)
{
    return Record(0x0002, OldCell(Row, Col, Attributes).U16(Value));
}

TBiffBuilder& TBiffBuilder::Number2(unsigned Row, unsigned Col, std::string_view Attributes, double Value)
{
    return Record(0x0003, OldCell(Row, Col, Attributes).F64(Value));
}

TBiffBuilder& TBiffBuilder::Label2(unsigned Row, unsigned Col, std::string_view Attributes,
                                   std::string_view Text)
{
    return Record(0x0004, OldCell(Row, Col, Attributes).U8(static_cast<unsigned>(Text.size())).Text(Text));
}

TBiffBuilder& TBiffBuilder::BoolErr2(unsigned Row, unsigned Col, std::string_view Attributes, unsigned Value,
                                     bool IsError)
{
    return Record(0x0005, OldCell(Row, Col, Attributes).U8(Value).U8(IsError));
}

TBiffBuilder& TBiffBuilder::Formula2(unsigned Row, unsigned Col, std::string_view Attributes,
                                     std::string_view Result)
{
    return Record(0x0006, OldCell(Row, Col, Attributes).Text(Result).U8(0).U8(0));
}

TBiffBuilder& TBiffBuilder::Number(unsigned Row, unsigned Col, double Value, unsigned Xf)
{
    return Record(0x0203, Cell(Row, Col).U16(Xf).F64(Value));
}

TBiffBuilder& TBiffBuilder::Rk(unsigned Row, unsigned Col, std::uint32_t Value, unsigned Xf)
{
    return Record(0x027E, Cell(Row, Col).U16(Xf).U32(Value));
}

TBiffBuilder& TBiffBuilder::Label(unsigned Row, unsigned Col, std::string_view Text, unsigned Xf)
{
    return Record(0x0204, Cell(Row, Col).U16(Xf).U16(static_cast<unsigned>(Text.size())).Text(Text));
}

TBiffBuilder& TBiffBuilder::LabelSst(unsigned Row, unsigned Col, std::uint32_t Index, unsigned Xf)
{
    return Record(0x00FD, Cell(Row, Col).U16(Xf).U32(Index));
}

TBiffBuilder& TBiffBuilder::BoolErr(unsigned Row, unsigned Col, unsigned Value, bool IsError)
{
    return Record(0x0205, Cell(Row, Col).U16(0).U8(Value).U8(IsError));
}

TBiffBuilder& TBiffBuilder::Formula(unsigned Row, unsigned Col, std::string_view Result, unsigned Xf)
{
    const std::uint16_t Id = Version == bv3 ? 0x0206 : Version == bv4 ? 0x0406 : 0x0006;
    return Record(Id, Cell(Row, Col).U16(Xf).Text(Result).U16(0).U32(0).U16(0));
}

TBiffBuilder& TBiffBuilder::String(std::string_view Text)
{
    const auto Size = static_cast<unsigned>(Text.size());
    switch (Version) {
    case bv2: return Record(0x0007, TBytes().U8(Size).Text(Text));
    case bv8: return Record(0x0207, TBytes().U16(Size).U8(0).Text(Text));
    default:  return Record(0x0207, TBytes().U16(Size).Text(Text));
    }
}

std::string TextResult() { return SpecialResult(0, 0); }
std::string BooleanResult(bool Value) { return SpecialResult(1, Value); }
std::string ErrorResult(unsigned Code) { return SpecialResult(2, Code); }
std::string EmptyResult() { return SpecialResult(3, 0); }

std::uint32_t RkOfInteger(int Value, bool Hundredfold)
{
    return static_cast<std::uint32_t>(Value) << 2 | 2 | Hundredfold;
}

std::uint32_t RkOfDouble(double Value, bool Hundredfold)
{
    return static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(Value) >> 32 & ~3ull) | Hundredfold;
}

// TWorkbookBuilder

TWorkbookBuilder& TWorkbookBuilder::Globals(const TBiffBuilder& Records)
{
    GlobalRecords += Records.Str();
    return *this;
}

TWorkbookBuilder& TWorkbookBuilder::Sheet(std::string_view Name, const TBiffBuilder& Records, TBiffPart Part)
{
    auto Head = TBytes().U8(static_cast<unsigned>(Name.size()));
    if (Version == bv8)
        Head.U8(0);
    Sheets.push_back({Head.Text(Name), Records.Str(), Part});
    return *this;
}

TWorkbookBuilder& TWorkbookBuilder::Sheet(std::u16string_view Name, const TBiffBuilder& Records)
{
    Sheets.push_back({TBytes().U8(static_cast<unsigned>(Name.size())).U8(1).Text(Name), Records.Str(),
                      bpSheet});
    return *this;
}

std::string TWorkbookBuilder::EntryOf(const TSheet& Sheet, std::size_t Offset) const
{
    const unsigned Kind = Sheet.Part == bpChart ? 2 : Sheet.Part == bpMacro ? 1 : Sheet.Part == bpModule ? 6
                                                                                                         : 0;
    const auto Body = TBytes().U32(static_cast<std::uint32_t>(Offset)).U8(0).U8(Kind).Text(Sheet.Name);
    return TBiffBuilder(Version).Record(0x0085, Body).Str();
}

std::size_t TWorkbookBuilder::OffsetOfSheet(std::size_t Index) const
{
    auto Offset = SizeOf(Version, GlobalRecords);
    for (const auto& Sheet : Sheets)
        Offset += EntryOf(Sheet, 0).size();
    for (std::size_t I = 0; I < Index; ++I)
        Offset += SizeOf(Version, Sheets[I].Records);
    return Offset;
}

std::string TWorkbookBuilder::Build() const
{
    auto Stream = TBiffBuilder(Version).Bof(bpGlobals).Str() + GlobalRecords;
    for (std::size_t I = 0; I < Sheets.size(); ++I)
        Stream += EntryOf(Sheets[I], OffsetOfSheet(I));
    Stream += TBiffBuilder(Version).Eof().Str();
    for (const auto& Sheet : Sheets)
        Stream += TBiffBuilder(Version).Bof(Sheet.Part).Str() + Sheet.Records +
                  TBiffBuilder(Version).Eof().Str();
    return Stream;
}

} // namespace kv
