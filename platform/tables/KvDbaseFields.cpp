#include "KvDbaseFields.h"

#include <string_view>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr char FieldsEnd = '\x0D';
constexpr std::size_t Dbase2MaxFields = 32;
constexpr std::size_t MaxTextSize = 65535, MaxSize = 255;
constexpr std::size_t BinaryMemoSize = 4, TextMemoSize = 10;

/// A field as the header lists it.
struct TListedField
{
    std::string_view Name;
    char Letter = 0;
    std::size_t Size = 0;
    unsigned Decimals = 0;
    unsigned Flags = 0;                             // of Visual FoxPro, else none
};

enum TFieldFlag : unsigned { ffHidden = 0x01, ffNullable = 0x02, ffBinary = 0x04, ffAutoIncrement = 0x08 };

[[noreturn]] void Refuse(std::string_view Pattern, std::size_t Field, std::string_view What)
{
    throw EFormatError(FormatText(Pattern, {std::to_string(Field), What}));
}

// --- The list ----------------------------------------------------------------------------------------

/// Where a field's parts stand among the bytes that list it.
struct TListing
{
    std::size_t Size, NameSize, SizeOffset, DecimalsOffset;
};

constexpr TListing ListingOf(TKvDbaseDialect Dialect)
{
    switch (Dialect) {
    case ddDbase2: return {16, 11, 12, 15};
    case ddDbase7: return {48, 32, 33, 34};
    default:       return {32, 11, 16, 17};
    }
}

TListedField TakeField(TKvByteCursor Entry, TKvDbaseDialect Dialect)
{
    constexpr std::size_t FlagsOffset = 18;
    const auto Listing = ListingOf(Dialect);
    const auto Name = Entry.BytesAt(0, Listing.NameSize);
    return {.Name = Name.substr(0, Name.find('\0')),
            .Letter = Entry.At<char>(Listing.NameSize),
            .Size = Entry.At<std::uint8_t>(Listing.SizeOffset),
            .Decimals = Entry.At<std::uint8_t>(Listing.DecimalsOffset),
            .Flags = Dialect == ddVisualFoxPro ? Entry.At<std::uint8_t>(FlagsOffset) : 0u};
}

/// Leaves `Header` behind the list's end, or where that is missing.
std::vector<TListedField> TakeFields(TKvByteCursor& Header, TKvDbaseDialect Dialect)
{
    const auto EntrySize = ListingOf(Dialect).Size;
    const auto Most = Dialect == ddDbase2 ? Dbase2MaxFields : Header.Size() / EntrySize;
    std::vector<TListedField> Fields;
    while (Fields.size() < Most && Header.Remaining() >= EntrySize) {
        const char First = Header.At<char>(Header.Position());
        if (First == FieldsEnd || First == '\0')
            break;
        Fields.push_back(TakeField(Header.TakeSlice(EntrySize), Dialect));
    }
    if (Fields.empty())
        throw EFormatError("it has no fields");
    return Fields;
}

/// Some programs have texts of more than 255 bytes, the high byte of the size where numbers have decimals.
/// Others leave anything there: whether the sizes add up tells.
void WidenTexts(std::vector<TListedField>& Fields, std::size_t RecordSize)
{
    std::size_t Narrow = 1, Wide = 1;
    for (const auto& Field : Fields) {
        Narrow += Field.Size;
        Wide += Field.Size + (Field.Letter == 'C' ? Field.Decimals * 256 : 0);
    }
    if (Narrow == RecordSize || Wide != RecordSize)
        return;
    for (auto& Field : Fields)
        if (Field.Letter == 'C')
            Field.Size += Field.Decimals * 256;
}

// --- Their meaning -----------------------------------------------------------------------------------

/// What a letter stands for, and the sizes that a field of it can have.
struct TMeaning
{
    TFieldType Type;
    TKvDbaseStorage Storage;
    std::size_t LowSize, HighSize;
};

TFieldType IntegerTypeOf(std::size_t Digits)
{
    return Digits <= 4 ? ftSmallint : Digits <= 9 ? ftInteger : Digits <= 18 ? ftLargeint : ftBCD;
}

TMeaning MeaningOfMemo(TFieldType Type, std::size_t Size)
{
    const auto Expected = Size == BinaryMemoSize ? BinaryMemoSize : TextMemoSize;
    return {Type, dvMemo, Expected, Expected};
}

TMeaning MeaningOf(const TListedField& Field, TKvDbaseDialect Dialect)
{
    const bool IsBinary = (Field.Flags & ffBinary) != 0;
    const bool CountsUp = (Field.Flags & ffAutoIncrement) != 0;
    switch (Field.Letter) {
    case 'C':
        return IsBinary ? TMeaning{ftString, dvRawText, 1, MaxSize} // not to be translated
                        : TMeaning{ftString, dvText, 1, MaxTextSize};
    case 'N': return {Field.Decimals == 0 ? IntegerTypeOf(Field.Size) : ftBCD, dvNumber, 1, MaxSize};
    case 'F': return {ftFloat, dvFloat, 1, MaxSize};
    case 'L': return {ftBoolean, dvLogical, 1, 1};
    case 'D': return {ftDate, dvDay, 8, 8};
    case 'I': return {CountsUp ? ftAutoInc : ftInteger, Dialect == ddDbase7 ? dvOrderedLong : dvLong, 4, 4};
    case '+': return {ftAutoInc, dvOrderedLong, 4, 4};
    case 'O': return {ftFloat, dvOrderedDouble, 8, 8};
    case '@': return {ftDateTime, dvTimestamp, 8, 8};
    case 'T': return {ftDateTime, dvMoment, 8, 8};
    case 'Y': return {ftCurrency, dvAmount, 8, 8};
    case 'V':
        return IsBinary ? TMeaning{ftVarBytes, dvVarBytes, 1, MaxSize}
                        : TMeaning{ftString, dvVarText, 1, MaxSize};
    case 'Q': return {ftVarBytes, dvVarBytes, 1, MaxSize};
    case 'M': return MeaningOfMemo(IsBinary ? ftBlob : ftMemo, Field.Size);
    case 'G': return MeaningOfMemo(ftOle, Field.Size);
    case 'P': return MeaningOfMemo(ftGraphic, Field.Size);
    case 'W': return MeaningOfMemo(ftBlob, Field.Size);
    case 'B': return Field.Size == 8 ? TMeaning{ftFloat, dvDouble, 8, 8} : MeaningOfMemo(ftBlob, Field.Size);
    default:  return {ftUnknown, dvRawText, 0, 0};
    }
}

/// The field with the number `Number`, from 1, without its place in the record.
TKvDbaseField FieldOf(const TListedField& Listed, TKvDbaseDialect Dialect, std::size_t Number)
{
    const auto Meaning = MeaningOf(Listed, Dialect);
    if (Meaning.Type == ftUnknown)
        Refuse("field %d has the unknown type '%s'", Number, {&Listed.Letter, 1});
    if (Listed.Size < Meaning.LowSize || Listed.Size > Meaning.HighSize)
        Refuse("field %d cannot have a size of %d", Number, std::to_string(Listed.Size));
    TKvDbaseField Field;
    Field.Name = Listed.Name;
    Field.Type = Meaning.Type;
    Field.Storage = Meaning.Storage;
    Field.Size = Listed.Size;
    return Field;
}

/// Some programs call fields nullable and have no bits for them: then no value is null, and none has a size.
void CheckBits(TKvDbaseFields& Fields, std::size_t Needed)
{
    if (Fields.BitsSize == 0)
        for (auto& Field : Fields.Visible)
            Field.NullBit = Field.SizeBit = TKvDbaseField::NoBit;
    else if (Needed > 8 * Fields.BitsSize)
        throw EFormatError("its records have too few bits for fields without a value");
}

/// Records may be longer than their fields where the list ends as it should: a damaged one may end too early.
bool EndsSoundly(TKvByteCursor BehindFields, TKvDbaseDialect Dialect)
{
    constexpr std::size_t DatabaseNameSize = 263;   // where Visual FoxPro names its database
    const bool HasEnd = !BehindFields.AtEnd() && BehindFields.Take<char>() == FieldsEnd;
    const auto Rest = BehindFields.Remaining();
    return HasEnd && (Rest < ListingOf(Dialect).Size || Rest == DatabaseNameSize);
}

/// Adds a field that can be read, else why it cannot.
void AddField(const TListedField& Listed, TKvDbaseField Place, TKvDbaseDialect Dialect, std::size_t Number,
              TKvDbaseFields& Fields)
{
    try {
        auto Field = FieldOf(Listed, Dialect, Number);
        Field.Offset = Place.Offset;
        Field.NullBit = Place.NullBit;
        Field.SizeBit = Place.SizeBit;
        Fields.Visible.push_back(std::move(Field));
    }
    catch (const EFormatError& Error) {
        Fields.LeftOut.push_back({std::string(Listed.Name), Error.Message});
    }
}

} // namespace

TKvDbaseFields ReadDbaseFields(TKvByteCursor Header, TKvDbaseDialect Dialect, std::size_t RecordSize)
{
    auto List = Header.TakeSlice(Header.Remaining());
    auto Listed = TakeFields(List, Dialect);
    if (Dialect == ddDbase)
        WidenTexts(Listed, RecordSize);

    TKvDbaseFields Fields;
    std::size_t Number = 0, Offset = 1;
    int NextBit = 0;
    for (const auto& Each : Listed) {
        ++Number;
        if (Offset + Each.Size > RecordSize)
            Refuse("field %d ends outside its records of %d bytes", Number, std::to_string(RecordSize));
        if (Dialect == ddVisualFoxPro && Each.Letter == '0') {
            Fields.BitsOffset = Offset;
            Fields.BitsSize = Each.Size;
        } else {
            TKvDbaseField Place{.Offset = Offset};
            if (Each.Letter == 'V' || Each.Letter == 'Q')
                Place.SizeBit = NextBit++;
            if ((Each.Flags & ffNullable) != 0)
                Place.NullBit = NextBit++;
            if ((Each.Flags & ffHidden) == 0)
                AddField(Each, Place, Dialect, Number, Fields);
        }
        Offset += Each.Size;
    }
    if (Offset != RecordSize && !EndsSoundly(List, Dialect))
        throw EFormatError(
            FormatText("its records have %d bytes, their fields and the mark of deleted ones %d",
                       {std::to_string(RecordSize), std::to_string(Offset)}));
    if (Fields.Visible.empty() && !Fields.LeftOut.empty())
        throw EFormatError(Fields.LeftOut.front().Reason);
    Fields.BytesLeftOut = RecordSize - Offset;
    CheckBits(Fields, static_cast<std::size_t>(NextBit));
    return Fields;
}

} // namespace kv
