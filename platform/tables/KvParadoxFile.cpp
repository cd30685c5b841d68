#include "KvParadoxFile.h"

#include <algorithm>

#include "KvException.h"
#include "KvParadoxValues.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t MaxHeaderSize = 0xFFFF;
constexpr std::size_t UsualWindow = 64 << 10;       // small, as the chain of blocks may go to and fro

TFieldType FieldTypeOf(TKvParadoxType Type)
{
    switch (Type) {
    case ptAlpha:         return ftString;
    case ptDate:          return ftDate;
    case ptShort:         return ftSmallint;
    case ptLong:          return ftInteger;
    case ptCurrency:      return ftCurrency;
    case ptNumber:        return ftFloat;
    case ptLogical:       return ftBoolean;
    case ptMemo:          return ftMemo;
    case ptBinary:        return ftBlob;
    case ptFormattedMemo: return ftFmtMemo;
    case ptOle:           return ftOle;
    case ptGraphic:       return ftGraphic;
    case ptTime:          return ftTime;
    case ptTimestamp:     return ftDateTime;
    case ptAutoIncrement: return ftAutoInc;
    case ptBcd:           return ftBCD;
    case ptBytes:         return ftBytes;
    }
    return ftUnknown;
}

} // namespace

TKvParadoxFile::TKvParadoxFile(const std::string& TableFile, bool Transliterate)
    : TKvTableFile(TableFile),
      Header(ReadParadoxHeader(TKvFileWindow(TableFile, MaxHeaderSize).At(0, MaxHeaderSize), TableFile)),
      File(TableFile, std::max(UsualWindow, Header.BlockSize)), Records(FollowParadoxBlocks(File, Header)),
      Blobs(TableFile, ".MB"), LongValues(Header.Fields.size())
{
    if (Transliterate)
        Text = TKvTableText(Header.CodePage);
    for (const auto& Field : Header.Fields)
        AddField(Field.Name, FieldTypeOf(Field.Type), Field.Size);
}

void TKvParadoxFile::First()
{
    Block = 0;
    RecordNumber = 0;
    Record = nullptr;
    if (LastRecord > 0)
        EnterBlock();
}

void TKvParadoxFile::Next()
{
    if (Record == nullptr)
        return;
    if (RecordNumber >= LastRecord) {
        Record = nullptr;
        return;
    }
    if (LeftInBlock == 0) {
        ++Block;
        EnterBlock();
        return;
    }
    --LeftInBlock;
    ++RecordNumber;
    Record += Header.RecordSize;
}

void TKvParadoxFile::EnterBlock()
{
    Record = nullptr;
    if (Block == Records.Blocks.size()) {
        if (!Records.Fault.empty())
            RaiseDamage(Records.Fault);
        return;
    }
    const auto& [Offset, Count] = Records.Blocks[Block];
    const auto Bytes = File.At(Offset, Count * Header.RecordSize);
    if (Bytes.size() < Count * Header.RecordSize)
        RaiseDamage("it has become shorter");
    Record = Bytes.data();
    LeftInBlock = Count - 1;
    ++RecordNumber;
}

void TKvParadoxFile::RaiseDamage(std::string_view Fault) const
{
    throw EFormatError(FormatText("File \"%s\" is damaged after record %d: %s",
                                  {FileName, std::to_string(RecordNumber), Fault}),
                       {.FileName = FileName,
                        .Place = "record " + std::to_string(RecordNumber + 1),
                        .Rule = erFormat});
}

std::vector<TKvTableRemark> TKvParadoxFile::Remarks() const
{
    auto Result = TKvTableFile::Remarks();
    if (!Records.Fault.empty())
        Result.push_back({.Kind = trRecordsMissing,
                          .Count = static_cast<std::int64_t>(Records.RecordCount),
                          .Limit = static_cast<std::int64_t>(Header.RecordCount),
                          .Reason = Records.Fault});
    return Result;
}

TVariant TKvParadoxFile::Decode(std::size_t Index)
{
    if (Record == nullptr)
        return Null;
    const auto& Field = Header.Fields[Index];
    const std::string_view Stored(Record + Field.Offset, Field.Size);
    if (IsParadoxBlob(Field.Type))
        return BlobValue(Index, Stored);
    auto Value = ParadoxValue(Field.Type, Stored);
    return Field.Type == ptAlpha && Value.IsString() ? Text.Value(Value.Text()) : Value;
}

TVariant TKvParadoxFile::BlobValue(std::size_t Index, std::string_view Stored)
{
    const auto Blob = ParadoxBlob(Stored);
    if (Blob.Size == 0)
        return Null;
    const auto Content = Blob.IsInLeader() ? Blob.Leader.substr(0, Blob.Size)
                                           : ParadoxBlobBytes(Blobs.File(), Blob, LongValues[Index]);
    switch (Header.Fields[Index].Type) {
    case ptMemo:          return Text.Value(Content);
    case ptFormattedMemo: return Text.Value(FormattedMemoText(Content));
    default:              return TVariant::Borrow(Content);
    }
}

} // namespace kv
