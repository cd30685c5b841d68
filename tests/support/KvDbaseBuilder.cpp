#include "KvDbaseBuilder.h"

#include <algorithm>
#include <bit>

#include "KvBytes.h"

namespace kv {

namespace {

constexpr char FieldsEnd = '\x0D', FileEnd = '\x1A';

std::string Filled(std::string_view Text, std::size_t Size, char Filler)
{
    std::string Result(Text.substr(0, Size));
    Result.resize(Size, Filler);
    return Result;
}

std::string BigEndian32(std::uint32_t Value)
{
    std::string Bytes = TBytes().U32(Value).Str();
    std::ranges::reverse(Bytes);
    return Bytes;
}

} // namespace

std::string DbaseLong(std::int32_t Value)
{
    return TBytes().U32(static_cast<std::uint32_t>(Value)).Str();
}

std::string DbaseDouble(double Value)
{
    return TBytes().F64(Value).Str();
}

std::string DbaseAmount(std::int64_t TenThousandths)
{
    return TBytes().F64(std::bit_cast<double>(TenThousandths)).Str();
}

std::string DbaseMoment(std::int32_t JulianDay, std::int32_t Milliseconds)
{
    return DbaseLong(JulianDay) + DbaseLong(Milliseconds);
}

std::string DbaseVarText(std::string_view Text, std::size_t Size)
{
    return Filled(Text, Size - 1, ' ') + static_cast<char>(Text.size());
}

TDbaseBuilder& TDbaseBuilder::Field(std::string_view Name, char Letter, unsigned Size, unsigned Decimals,
                                    unsigned Flags)
{
    Fields.push_back({std::string(Name), Letter, Size, Decimals, Flags});
    return *this;
}

TDbaseBuilder& TDbaseBuilder::Record(const std::vector<std::string>& Values, char Mark)
{
    std::string Stored(1, Mark);
    for (std::size_t I = 0; I < Fields.size(); ++I)
        Stored += Filled(I < Values.size() ? Values[I] : "", Fields[I].Size, ' ');
    Records.push_back(Stored);
    return *this;
}

TDbaseBuilder& TDbaseBuilder::Language(unsigned Driver)
{
    LanguageByte = Driver;
    return *this;
}

TDbaseBuilder& TDbaseBuilder::Language(std::string_view Driver)
{
    LanguageName = Driver;
    return *this;
}

TDbaseBuilder& TDbaseBuilder::Encrypted()
{
    IsEncrypted = true;
    return *this;
}

std::string TDbaseBuilder::ListedField(const TField& Field) const
{
    const auto Name = [&](std::size_t Size) { return Filled(Field.Name, Size, '\0') + Field.Letter; };
    TBytes Bytes;
    if (Version == 0x02)
        Bytes.Text(Name(11)).U8(Field.Size).Zeros(2).U8(Field.Decimals);
    else if ((Version & 7) == 4)
        Bytes.Text(Name(32)).U8(Field.Size).U8(Field.Decimals).Zeros(13);
    else                                            // a text of more than 255 bytes has its size in both
        Bytes.Text(Name(11)).Zeros(4).U8(Field.Size % 256)
             .U8(Field.Size > 255 ? Field.Size / 256 : Field.Decimals)
            .U8(Field.Flags).Zeros(13);
    return Bytes.Str();
}

std::string TDbaseBuilder::Header(std::size_t HeaderSize, std::size_t RecordSize) const
{
    TBytes Bytes;
    if (Version == 0x02)
        return Bytes.U8(Version).U16(static_cast<unsigned>(Records.size())).U8(6).U8(28).U8(99)
            .U16(static_cast<unsigned>(RecordSize)).Str();
    Bytes.U8(Version).U8(99).U8(6).U8(28).U32(static_cast<std::uint32_t>(Records.size()))
        .U16(static_cast<unsigned>(HeaderSize)).U16(static_cast<unsigned>(RecordSize)).Zeros(3)
        .U8(IsEncrypted)
        .Zeros(13).U8(LanguageByte).Zeros(2);
    if ((Version & 7) == 4)
        Bytes.Text(Filled(LanguageName, 32, '\0')).Zeros(4);
    return Bytes.Str();
}

std::string TDbaseBuilder::Build() const
{
    std::string List;
    std::size_t RecordSize = 1;
    for (const auto& Field : Fields) {
        List += ListedField(Field);
        RecordSize += Field.Size;
    }
    List += FieldsEnd;
    std::string File = Header(Header(0, 0).size() + List.size(), RecordSize) + List;
    if (Version == 0x02)
        File.resize(521);
    for (const auto& Record : Records)
        File += Record;
    return File + FileEnd;
}

TDbaseMemoBuilder::TDbaseMemoBuilder(TKind FileKind, unsigned BlockBytes)
    : Kind(FileKind), BlockSize(BlockBytes)
{
    TBytes Header;
    if (Kind == FoxPro)
        Header.Zeros(6).U8(BlockBytes / 256).U8(BlockBytes % 256);
    else
        Header.Zeros(20).U16(Kind == Dbase4 ? BlockBytes : 0);
    File = Header.Zeros(512 - Header.Str().size());
}

std::uint32_t TDbaseMemoBuilder::Add(std::string_view Text)
{
    File.resize((File.size() + BlockSize - 1) / BlockSize * BlockSize);
    const auto Block = static_cast<std::uint32_t>(File.size() / BlockSize);
    const auto Size = static_cast<std::uint32_t>(Text.size());
    if (Kind == Dbase4)
        File += TBytes().U32(0x0008FFFF).U32(Size + 8).Str();
    else if (Kind == FoxPro)
        File += BigEndian32(1) + BigEndian32(Size);
    File += Text;
    if (Kind == Dbase3)
        File += "\x1A\x1A";
    return Block;
}

} // namespace kv
