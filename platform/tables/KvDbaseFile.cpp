#include "KvDbaseFile.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "KvByteCursor.h"
#include "KvDbaseLanguage.h"
#include "KvDbaseMemo.h"
#include "KvDbaseValues.h"
#include "KvException.h"
#include "KvFile.h"
#include "KvText.h"
#include "KvUtf8.h"

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

/// What a file beside the table says of its code page; nothing when there is none.
std::string CodePageBeside(const std::string& TableFile)
{
    constexpr std::size_t MaxLabelSize = 64;
    const auto Name = CompanionFileName(TableFile, ".CPG");
    std::error_code Ignored;
    if (!std::filesystem::is_regular_file(Name, Ignored))
        return {};
    return CodePageOfLabel(ReadFileBytes(Name, MaxLabelSize).View());
}

} // namespace

TKvDbaseFile::TKvDbaseFile(const std::string& TableFile, bool Transliterate)
    : TKvTableFile(TableFile), File(TableFile), Header(ReadDbaseHeader(File.At(0, MaxHeaderSize), TableFile)),
      StoredRecords(CountStoredRecords(Header, File.FileSize())),
      Memos(TableFile, Header.MemoKind == dmFoxPro ? ".FPT" : ".DBT"),
      MemoTexts(Header.Fields.Visible.size())
{
    CheckPadding();
    if (Transliterate) {
        const auto Told = CodePageBeside(TableFile);
        Text = TKvTableText(Told.empty() ? Header.CodePage : Told);
    }
    for (const auto& Field : Header.Fields.Visible)
        AddField(Field.Name, Field.Type, Field.Size);
}

/// A size of records that is damaged shows: the records that are told do not fill the file.
void TKvDbaseFile::CheckPadding() const
{
    const auto End = OffsetOf(Header.RecordCount);
    if (Header.Fields.BytesLeftOut == 0 || (File.FileSize() >= End && File.FileSize() <= End + 1))
        return;
    const auto Used = Header.RecordSize - Header.Fields.BytesLeftOut;
    throw EFormatError(FormatText("File \"%s\" is no dBase table: its records have %d bytes, their fields "
                                  "and the mark of deleted ones %d",
                                  {FileName, std::to_string(Header.RecordSize), std::to_string(Used)}),
                       {.FileName = FileName, .Rule = erFormat});
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
    const auto Stored = std::min(StoredRecords, LastRecord);
    for (; RecordIndex < Stored; ++RecordIndex) {
        Record = RecordAt(File, RecordIndex);
        if (Record == nullptr || *Record != DeletedMark)
            break;
    }
    if (RecordIndex >= Stored)
        Record = nullptr;
    if (Record == nullptr && RecordIndex < std::min(Header.RecordCount, LastRecord))
        RaiseEnded();
}

void TKvDbaseFile::RaiseEnded() const
{
    const auto Counted = std::to_string(Header.RecordCount);
    throw EFormatError(FormatText("File \"%s\" ends after record %d of %d",
                                  {FileName, std::to_string(RecordIndex), Counted}),
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
    case dvNumber:
    case dvFloat:    return NumberValue(Field, Stored);
    case dvMemo:     return MemoValue(Index, Stored);
    case dvRawText: {
        const auto Filled = Stored.substr(0, Stored.find_last_not_of(' ') + 1);
        return Filled.empty() ? TVariant(Null) : Text.Unconverted(Filled);
    }
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

TVariant TKvDbaseFile::NumberValue(const TKvDbaseField& Field, std::string_view Stored)
{
    auto Value = DbaseValue(Field.Storage, Stored);
    if (Value.IsNull() && LastLost != Number() && IsLostNumber(Stored)) {
        ++LostRecords;
        LastLost = Number();
        FirstLost = FirstLost == 0 ? LastLost : FirstLost;
    }
    return Value;
}

TVariant TKvDbaseFile::MemoValue(std::size_t Index, std::string_view Stored)
{
    const auto Block = MemoBlock(Stored);
    if (Block == 0)
        return Null;
    if (Header.MemoKind == dmNone)
        throw EFormatError("memos of this kind of table cannot be read");
    auto& Memo = MemoTexts[Index];
    DbaseMemo(Memos.File(), Header.MemoKind, Block, Memo);
    if (Header.Fields.Visible[Index].Type != ftMemo)
        return TVariant::Borrow(Memo);
    if (Header.MemoKind != dmFoxPro && HasSoftLines(Memo) && Text.IsSingleByte() && !IsValidUtf8(Memo))
        JoinSoftLines(Memo);
    return Text.Value(Memo);
}

/// Records behind those that the header counts, as a program leaves them that did not come to count them.
std::size_t TKvDbaseFile::CountRecordsBeyond() const
{
    TKvFileWindow Marks(FileName);
    auto Index = Header.RecordCount;
    for (;; ++Index)
        if (const auto* const Each = RecordAt(Marks, Index); !Each || (*Each != ' ' && *Each != DeletedMark))
            return Index - Header.RecordCount;
}

std::vector<TKvTableRemark> TKvDbaseFile::Remarks() const
{
    const auto Number = [](std::size_t Count) { return static_cast<std::int64_t>(Count); };
    auto Result = TKvTableFile::Remarks();
    for (const auto& Field : Header.Fields.LeftOut)
        Result.push_back({.Kind = trFieldLeftOut, .Name = Field.Name, .Reason = Field.Reason});
    if (Header.Fields.BytesLeftOut > 0)
        Result.push_back({.Kind = trBytesLeftOut, .Count = Number(Header.Fields.BytesLeftOut)});
    if (StoredRecords < Header.RecordCount)
        Result.push_back({.Kind = trRecordsMissing,
                          .Count = Number(StoredRecords),
                          .Limit = Number(Header.RecordCount),
                          .Reason = "the file ends there"});
    else if (const auto Beyond = CountRecordsBeyond(); Beyond > 0)
        Result.push_back(
            {.Kind = trRecordsBeyond, .Count = Number(Beyond), .Limit = Number(Header.RecordCount)});
    if (LostRecords > 0)
        Result.push_back({.Kind = trNumbersLost, .Count = Number(LostRecords), .First = Number(FirstLost)});
    return Result;
}

} // namespace kv
