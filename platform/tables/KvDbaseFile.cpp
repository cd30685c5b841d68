#include "KvDbaseFile.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "KvByteCursor.h"
#include "KvDbaseMemo.h"
#include "KvDbaseValues.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr char DeletedMark = '*';
constexpr std::size_t MaxHeaderSize = 65535;

std::size_t CountStoredRecords(const TKvDbaseHeader& Header, std::uint64_t FileSize)
{
    const auto Room = FileSize > Header.HeaderSize ? (FileSize - Header.HeaderSize) / Header.RecordSize : 0;
    return static_cast<std::size_t>(std::min<std::uint64_t>(Header.RecordCount, Room));
}

/// The number of a memo's block, 0 when there is no memo.
std::uint64_t MemoBlock(std::string_view Stored)
{
    if (Stored.size() == sizeof(std::uint32_t))
        return LoadLittleEndian<std::uint32_t>(Stored.data());
    auto Digits = DbaseText(Stored);
    Digits.remove_prefix(std::min(Digits.find_first_not_of(' '), Digits.size()));
    std::uint64_t Block = 0;
    const auto* const Last = Digits.data() + Digits.size();
    if (std::from_chars(Digits.data(), Last, Block).ptr != Last)
        throw EFormatError(FormatText("'%s' is no number of a memo block", {Digits}),
                           {.Value = std::string(Digits)});
    return Block;
}

} // namespace

TKvDbaseFile::TKvDbaseFile(const std::string& TableFile, bool Transliterate)
    : TKvTableFile(TableFile), File(TableFile), Header(ReadDbaseHeader(File.At(0, MaxHeaderSize), TableFile)),
      StoredRecords(CountStoredRecords(Header, File.FileSize())),
      Memos(TableFile, Header.MemoKind == dmFoxPro ? ".FPT" : ".DBT")
{
    if (Transliterate)
        Text = TKvTableText(Header.CodePage);
    for (const auto& Field : Header.Fields.Visible)
        AddField(Field.Name, Field.Type, Field.Size);
}

/// None where the file has become shorter.
const char* TKvDbaseFile::RecordAt(TKvFileWindow& Source, std::size_t Index) const
{
    const auto Bytes = Source.At(OffsetOf(Index), Header.RecordSize);
    return Bytes.size() == Header.RecordSize ? Bytes.data() : nullptr;
}

std::size_t TKvDbaseFile::RecordCount() const
{
    if (!LiveRecords) {
        TKvFileWindow Marks(FileName);              // the other one stays where the current record is
        LiveRecords = Header.RecordCount;           // what the file lacks is an error, not deleted
        for (std::size_t I = 0; I < StoredRecords; ++I)
            if (const auto* const Each = RecordAt(Marks, I); Each && *Each == DeletedMark)
                --*LiveRecords;
    }
    return *LiveRecords;
}

void TKvDbaseFile::First()
{
    RecordIndex = 0;
    SkipDeleted();
}

void TKvDbaseFile::Next()
{
    if (Record == nullptr)
        return;
    ++RecordIndex;
    SkipDeleted();
}

void TKvDbaseFile::SkipDeleted()
{
    for (; RecordIndex < StoredRecords; ++RecordIndex) {
        Record = RecordAt(File, RecordIndex);
        if (Record == nullptr || *Record != DeletedMark)
            break;
    }
    if (RecordIndex == StoredRecords)
        Record = nullptr;
    if (Record == nullptr && RecordIndex < Header.RecordCount)
        RaiseEnded();
}

void TKvDbaseFile::RaiseEnded() const
{
    const auto Last = std::to_string(RecordIndex);
    throw EFormatError(FormatText("File \"%s\" ends after record %d of %d",
                                  {FileName, Last, std::to_string(Header.RecordCount)}),
                       {.FileName = FileName,
                        .Place = "record " + std::to_string(RecordIndex + 1),
                        .Rule = erFormat,
                        .Offset = static_cast<std::int64_t>(OffsetOf(RecordIndex))});
}

bool TKvDbaseFile::HasBit(int Bit) const
{
    if (Bit == TKvDbaseField::NoBit)
        return false;
    const auto Byte =
        static_cast<unsigned char>(Record[Header.Fields.BitsOffset + static_cast<std::size_t>(Bit / 8)]);
    return (Byte >> Bit % 8 & 1) != 0;
}

TVariant TKvDbaseFile::Decode(std::size_t Index)
{
    if (Record == nullptr)
        return Null;
    const auto& Field = Header.Fields.Visible[Index];
    if (HasBit(Field.NullBit))
        return Null;
    const std::string_view Stored(Record + Field.Offset, Field.Size);
    switch (Field.Storage) {
    case dvText: {
        const auto Filled = DbaseText(Stored);
        return Filled.empty() ? TVariant(Null) : Text.Value(Filled);
    }
    case dvVarText:  return Text.Value(WithoutRest(Field, Stored));
    case dvVarBytes: return TVariant::Borrow(WithoutRest(Field, Stored));
    case dvMemo:     return MemoValue(Field, Stored);
    default:         return DbaseValue(Field.Storage, Stored);
    }
}

std::string_view TKvDbaseFile::WithoutRest(const TKvDbaseField& Field, std::string_view Stored) const
{
    if (!HasBit(Field.SizeBit))
        return Stored;
    const auto Size = static_cast<unsigned char>(Stored.back());
    if (Size >= Stored.size())
        throw EFormatError(FormatText("its size is said to be %d", {std::to_string(Size)}));
    return Stored.substr(0, Size);
}

TVariant TKvDbaseFile::MemoValue(const TKvDbaseField& Field, std::string_view Stored)
{
    const auto Block = MemoBlock(Stored);
    if (Block == 0)
        return Null;
    if (Header.MemoKind == dmNone)
        throw EFormatError("memos of this kind of table cannot be read");
    const auto Memo = DbaseMemo(Memos.Bytes(), Header.MemoKind, Block);
    return Field.Type == ftMemo ? Text.Value(Memo) : TVariant::Borrow(Memo);
}

} // namespace kv
