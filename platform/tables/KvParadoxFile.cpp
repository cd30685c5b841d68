#include "KvParadoxFile.h"

#include "KvCompanionFile.h"
#include "KvException.h"
#include "KvParadoxValues.h"
#include "KvText.h"

namespace kv {

namespace {

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

TFieldDef FieldDefOf(const TKvParadoxField& Field, TKvTableText& Text)
{
    const bool HasSize = Field.Type == ptAlpha || Field.Type == ptBytes;
    return {.Name = std::string(Text.Convert(Field.Name)),
            .DataType = FieldTypeOf(Field.Type),
            .Size = HasSize ? static_cast<int>(Field.Size) : 0};
}

} // namespace

TKvParadoxFile::TKvParadoxFile(const std::string& TableFile, bool Transliterate)
    : FileName(TableFile), Bytes(ReadFileBytes(TableFile)), Header(ReadParadoxHeader(Bytes.View(), TableFile)),
      Records(FollowParadoxBlocks(Bytes.View(), Header)),
      Text(Transliterate ? TKvTableText(Header.CodePage) : TKvTableText())
{
    for (const auto& Field : Header.Fields) {
        try {
            Defs.push_back(FieldDefOf(Field, Text));
        }
        catch (const EConvertError& Error) {
            throw EFormatError(FormatText("File \"%s\", name of field %d: %s",
                                          {FileName, std::to_string(Defs.size() + 1), Error.Message}));
        }
    }
}

void TKvParadoxFile::First()
{
    Block = 0;
    RecordNumber = 0;
    EnterBlock();
}

void TKvParadoxFile::Next()
{
    if (Record == nullptr)
        return;
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
    if (Block < Records.Blocks.size()) {
        Record = Bytes.View().data() + Records.Blocks[Block].FirstRecord;
        LeftInBlock = Records.Blocks[Block].Count - 1;
        ++RecordNumber;
    } else if (!Records.Fault.empty()) {
        throw EFormatError(FormatText("File \"%s\" is damaged after record %d: %s",
                                      {FileName, std::to_string(RecordNumber), Records.Fault}));
    }
}

TVariant TKvParadoxFile::Value(std::size_t Index)
{
    const auto& Field = Header.Fields[Index];
    if (Record == nullptr)
        return Null;
    try {
        return Decode(Field, {Record + Field.Offset, Field.Size});
    }
    catch (const Exception& Error) {
        throw EFormatError(FormatText("File \"%s\", record %d, field '%s': %s",
                                      {FileName, std::to_string(RecordNumber), Defs[Index].Name, Error.Message}));
    }
}

TVariant TKvParadoxFile::Decode(const TKvParadoxField& Field, std::string_view Stored)
{
    if (IsParadoxBlob(Field.Type))
        return BlobValue(Field, Stored);
    auto Value = ParadoxValue(Field.Type, Stored);
    return Field.Type == ptAlpha && Value.IsString() ? Text.Value(Value.Text()) : Value;
}

TVariant TKvParadoxFile::BlobValue(const TKvParadoxField& Field, std::string_view Stored)
{
    const auto Blob = ParadoxBlob(Stored);
    if (Blob.Size == 0)
        return Null;
    const auto Content = Blob.IsInLeader() ? Blob.Leader.substr(0, Blob.Size) : ParadoxBlobBytes(Blobs(), Blob);
    switch (Field.Type) {
    case ptMemo:          return Text.Value(Content);
    case ptFormattedMemo: return Text.Value(FormattedMemoText(Content));
    default:              return TVariant::Borrow(Content);
    }
}

std::string_view TKvParadoxFile::Blobs()
{
    if (!BlobsAreRead) {
        BlobsAreRead = true;
        try {
            BlobBytes = ReadFileBytes(CompanionFileName(FileName, ".MB"));
        }
        catch (const EFileError& Error) {
            BlobFault = Error.Message;
        }
    }
    if (!BlobFault.empty())
        throw EFileError(BlobFault);
    return BlobBytes.View();
}

} // namespace kv
