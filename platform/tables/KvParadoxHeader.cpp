#include "KvParadoxHeader.h"

#include <initializer_list>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::uint8_t FirstVersion = 3;
constexpr std::uint8_t LongHeaderVersion = 5;
constexpr std::uint8_t LongNameVersion = 12;
constexpr std::size_t ShortHeaderSize = 0x58;       // without fields
constexpr std::size_t LongHeaderSize = 0x78;
constexpr std::size_t MaxFields = 255;
constexpr std::size_t MaxFieldName = 255;           // programs allow 25; nothing in the file bounds it
constexpr std::size_t MaxBlockKilobytes = 32;
constexpr std::size_t BlockHeaderSize = 6;
constexpr std::size_t PointerSize = 4;
constexpr std::size_t MinBlobSize = 10;             // KvParadoxBlobs

enum TFileKind : std::uint8_t { fkKeyedTable = 0, fkHeapTable = 2, fkLastIndex = 8 };

[[noreturn]] void Refuse(std::string_view Pattern, std::initializer_list<std::size_t> Numbers = {})
{
    std::vector<std::string> Texts;
    for (const auto Number : Numbers)
        Texts.push_back(std::to_string(Number));
    Texts.resize(2);
    throw EFormatError(FormatText(Pattern, {Texts[0], Texts[1]}));
}

/// The size of every type that has just one, else 0.
std::size_t FixedSize(TKvParadoxType Type)
{
    switch (Type) {
    case ptLogical:       return 1;
    case ptShort:         return 2;
    case ptDate:
    case ptLong:
    case ptTime:
    case ptAutoIncrement: return 4;
    case ptCurrency:
    case ptNumber:
    case ptTimestamp:     return 8;
    case ptBcd:           return 17;
    default:              return 0;
    }
}

bool IsText(TKvParadoxType Type) { return Type == ptAlpha || Type == ptBytes; }

/// `Length` is the size, but for ptBcd, where it counts decimals.
std::size_t SizeOf(TKvParadoxType Type, std::size_t Length, std::size_t Number)
{
    const auto Size = FixedSize(Type);
    if (Size == 0 && !IsText(Type) && !IsParadoxBlob(Type))
        Refuse("field %d has the unknown type %d", {Number, Type});
    const bool Fits = Size != 0 ? Type == ptBcd || Length == Size
                                : Length >= (IsText(Type) ? 1 : MinBlobSize);
    if (!Fits)
        Refuse("field %d cannot have a length of %d", {Number, Length});
    return Size != 0 ? Size : Length;
}

bool IsTable(const TKvByteCursor& File)
{
    const auto Kind = File.At<std::uint8_t>(0x04);
    return Kind == fkKeyedTable || Kind == fkHeapTable;
}

bool IsEncrypted(const TKvByteCursor& File)
{
    constexpr std::uint32_t StandsElsewhere = 0xFF00FF00;
    const auto Key = File.At<std::uint32_t>(0x25);
    const bool IsLong = File.At<std::uint8_t>(0x39) >= LongHeaderVersion;
    return IsLong && Key == StandsElsewhere ? File.At<std::uint32_t>(0x5C) != 0 : Key != 0;
}

std::string TakeName(TKvByteCursor& Names)
{
    const auto Rest = Names.Bytes().substr(Names.Position(), MaxFieldName + 1);
    const auto End = Rest.find('\0');
    if (End == 0 || End == Rest.npos)
        Refuse("there is no field name at offset %d", {Names.Offset()});
    Names.Skip(End + 1);
    return std::string(Rest.substr(0, End));
}

/// `Header` stands at the first field.
void ReadFields(TKvByteCursor& Header, std::size_t Count, std::uint8_t Version, TKvParadoxHeader& Result)
{
    std::size_t Offset = 0;
    for (std::size_t Number = 1; Number <= Count; ++Number) {
        TKvParadoxField Field;
        Field.Type = static_cast<TKvParadoxType>(Header.Take<std::uint8_t>());
        Field.Size = SizeOf(Field.Type, Header.Take<std::uint8_t>(), Number);
        Field.Offset = Offset;
        Offset += Field.Size;
        Result.Fields.push_back(std::move(Field));
    }
    if (Offset != Result.RecordSize)
        Refuse("its records have %d bytes, their fields %d", {Result.RecordSize, Offset});
    Header.Skip((1 + Count) * PointerSize + (Version >= LongNameVersion ? 261 : 79));
    for (auto& Field : Result.Fields)
        Field.Name = TakeName(Header);
}

void CheckSizes(const TKvParadoxHeader& Header, std::size_t FileSize)
{
    const auto Kilobytes = Header.BlockSize / 1024;
    if (Header.HeaderSize > FileSize)
        Refuse("it ends within its header");
    if (Kilobytes == 0 || Kilobytes > MaxBlockKilobytes)
        Refuse("its blocks cannot have %d KB", {Kilobytes});
    if (Header.RecordSize > Header.BlockSize - BlockHeaderSize)
        Refuse("a record of %d bytes does not fit into a block of %d", {Header.RecordSize, Header.BlockSize});
}

TKvParadoxHeader ReadHeader(TKvByteCursor File)
{
    const auto Version = File.At<std::uint8_t>(0x39);
    if (!IsTable(File) || Version < FirstVersion)
        Refuse("kind %d of version %d is unknown", {File.At<std::uint8_t>(0x04), Version});
    const bool IsLong = Version >= LongHeaderVersion;
    TKvParadoxHeader Result;
    Result.RecordSize = File.At<std::uint16_t>(0x00);
    Result.HeaderSize = File.At<std::uint16_t>(0x02);
    Result.BlockSize = File.At<std::uint8_t>(0x05) * std::size_t{1024};
    Result.RecordCount = File.At<std::uint32_t>(0x06);
    Result.FirstBlock = File.At<std::uint16_t>(0x0E);
    if (const auto Page = IsLong ? File.At<std::uint16_t>(0x6A) : std::uint16_t{0}; Page != 0)
        Result.CodePage = std::to_string(Page);
    CheckSizes(Result, File.Size());

    const auto Count = File.At<std::uint16_t>(0x21);
    if (Count == 0 || Count > MaxFields)
        Refuse("it cannot have %d fields", {Count});
    auto Header = File.TakeSlice(Result.HeaderSize);
    Header.Seek(IsLong ? LongHeaderSize : ShortHeaderSize);
    ReadFields(Header, Count, Version, Result);
    return Result;
}

} // namespace

bool IsParadoxBlob(TKvParadoxType Type)
{
    return Type >= ptMemo && Type <= ptGraphic;
}

bool IsParadox(std::string_view Bytes)
{
    if (Bytes.size() < LongHeaderSize)
        return false;
    const TKvByteCursor File(Bytes);
    const auto Kilobytes = File.At<std::uint8_t>(0x05);
    return File.At<std::uint8_t>(0x04) <= fkLastIndex && File.At<std::uint8_t>(0x39) >= FirstVersion &&
           File.At<std::uint8_t>(0x39) <= LongNameVersion && Kilobytes > 0 &&
           Kilobytes <= MaxBlockKilobytes && File.At<std::uint16_t>(0x02) >= LongHeaderSize;
}

TKvParadoxHeader ReadParadoxHeader(std::string_view Bytes, const std::string& FileName)
{
    const TKvByteCursor File(Bytes);
    if (IsParadox(Bytes) && !IsTable(File))
        throw EFormatError(FormatText("File \"%s\" is an index of a Paradox table, not the table itself",
                                      {FileName}),
                           {.FileName = FileName, .Rule = erFormat});
    if (IsParadox(Bytes) && IsEncrypted(File))
        throw EFormatError(FormatText("File \"%s\" is encrypted", {FileName}), {.FileName = FileName});
    try {
        return ReadHeader(File);
    }
    catch (const EFormatError& Error) {
        throw EFormatError(FormatText("File \"%s\" is no Paradox table: %s", {FileName, Error.Message}),
                           {.FileName = FileName, .Rule = erFormat, .Offset = Error.Facts.Offset});
    }
}

} // namespace kv
