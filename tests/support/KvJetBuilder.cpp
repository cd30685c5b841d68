#include "KvJetBuilder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "KvBytes.h"

namespace kv {

namespace {

constexpr unsigned DataPage = 1, DefinitionPage = 2;
constexpr std::uint32_t MapPage = 1, CatalogPage = 2;
constexpr std::uint32_t LongValueOwner = 0x4C41564C; // "LVAL"
constexpr std::size_t MapSize = 64;                 // bytes, a bit a page
constexpr unsigned PointerFlag = 0x4000, TargetFlag = 0x8000; // of a slot; both together: deleted
constexpr std::uint32_t InlineFlag = 0x80000000, OnePageFlag = 0x40000000;
constexpr std::uint32_t HeaderKey = 0x6B39DAC7;     // of the header's encoded part
constexpr std::size_t EncodedStart = 0x18;

void Put(std::string& Bytes, std::size_t Offset, std::string_view Part)
{
    Bytes.replace(Offset, Part.size(), Part);
}

unsigned U16At(std::string_view Bytes, std::size_t Offset)
{
    return static_cast<unsigned char>(Bytes[Offset]) |
           static_cast<unsigned>(static_cast<unsigned char>(Bytes[Offset + 1])) << 8;
}

/// RC4, which is its own inverse.
void Encode(std::string& Bytes, std::size_t Start, std::size_t Size, std::uint32_t Key)
{
    const std::string KeyBytes = TBytes().U32(Key);
    std::array<unsigned char, 256> State;
    std::iota(State.begin(), State.end(), static_cast<unsigned char>(0));
    for (std::size_t I = 0, J = 0; I < 256; ++I) {
        J = (J + State[I] + static_cast<unsigned char>(KeyBytes[I % 4])) % 256;
        std::swap(State[I], State[J]);
    }
    for (std::size_t Position = Start, I = 0, J = 0; Position < Start + Size; ++Position) {
        I = (I + 1) % 256;
        J = (J + State[I]) % 256;
        std::swap(State[I], State[J]);
        Bytes[Position] ^= static_cast<char>(State[(State[I] + State[J]) % 256]);
    }
}

std::optional<std::size_t> FixedSizeOf(TAccessFieldType Type)
{
    switch (Type) {
    case afBoolean:  return 0;                      // is told by the mark of nulls
    case afByte:     return 1;
    case afInteger:  return 2;
    case afLong:
    case afSingle:
    case afComplex:  return 4;
    case afCurrency:
    case afDouble:
    case afDateTime:
    case afBigInt:   return 8;
    case afGuid:     return 16;
    case afDecimal:  return 17;
    default:         return {};
    }
}

std::string LongField(std::uint32_t SizeAndKind, std::uint32_t Place)
{
    return TBytes().U32(SizeAndKind).U32(Place).U32(0);
}

} // namespace

std::string JetLong(std::int64_t Value, int Size)
{
    const auto Bits = std::bit_cast<std::array<char, 8>>(Value);
    return std::string(Bits.data(), static_cast<std::size_t>(Size));
}

std::string JetDouble(double Value) { return TBytes().F64(Value); }
std::string JetSingle(float Value) { return TBytes().U32(std::bit_cast<std::uint32_t>(Value)); }
std::string JetText(std::u16string_view Text) { return TBytes().Text(Text); }

std::string JetDecimal(bool Negative, std::uint32_t A, std::uint32_t B, std::uint32_t C, std::uint32_t D)
{
    return TBytes().U8(Negative ? 0x80 : 0).U32(A).U32(B).U32(C).U32(D);
}

std::string JetCalculated(std::string_view Bytes)
{
    return TBytes().Zeros(16).U32(static_cast<std::uint32_t>(Bytes.size())).Text(Bytes).Zeros(3);
}

std::string JetInline(std::string_view Bytes)
{
    return LongField(InlineFlag | static_cast<std::uint32_t>(Bytes.size()), 0).append(Bytes);
}

std::optional<std::size_t> TJetBuilder::TField::FixedSize() const
{
    return IsCalculated ? std::nullopt : FixedSizeOf(Type);
}

TJetBuilder::TJetBuilder(unsigned VersionByte) : Version(VersionByte), Pages(CatalogPage + 1) {}

TJetBuilder& TJetBuilder::CodePage(unsigned Number)
{
    CodePageNumber = Number;
    return *this;
}

TJetBuilder& TJetBuilder::Encoded(std::uint32_t WithKey)
{
    Key = WithKey;
    return *this;
}

TJetBuilder& TJetBuilder::Table(std::u16string_view Name, int ObjectType, std::uint32_t Flags)
{
    Tables.push_back({.Name = Stored(Name), .ObjectType = ObjectType, .Flags = Flags});
    return *this;
}

TJetBuilder& TJetBuilder::Field(std::u16string_view Name, TAccessFieldType Type, unsigned Size)
{
    Tables.back().Fields.push_back({Stored(Name), Type, Size, 0, 0});
    return *this;
}

TJetBuilder& TJetBuilder::Decimal(std::u16string_view Name, unsigned Precision, unsigned Scale)
{
    Tables.back().Fields.push_back({Stored(Name), afDecimal, 17, Precision, Scale});
    return *this;
}

TJetBuilder& TJetBuilder::Calculated()
{
    Tables.back().Fields.back().IsCalculated = true;
    return *this;
}

TJetBuilder& TJetBuilder::DropField(std::u16string_view Name)
{
    std::ranges::find(Tables.back().Fields, Stored(Name), &TField::Name)->IsDropped = true;
    return *this;
}

TJetBuilder& TJetBuilder::Record(const std::vector<TValue>& Values)
{
    Tables.back().Rows.push_back({Row(Values, Tables.back().Fields), 0, 0});
    return *this;
}

TJetBuilder& TJetBuilder::MovedRecord(const std::vector<TValue>& Values, int Hops)
{
    Tables.back().Rows.push_back({Row(Values, Tables.back().Fields), TargetFlag, Hops});
    return *this;
}

TJetBuilder& TJetBuilder::DeletedRecord(const std::vector<TValue>& Values)
{
    Tables.back().Rows.push_back({Row(Values, Tables.back().Fields), PointerFlag | TargetFlag, 0});
    return *this;
}

TJetBuilder& TJetBuilder::Counted(std::uint32_t Records)
{
    Tables.back().Counted = Records;
    return *this;
}

std::string TJetBuilder::OnOnePage(std::string_view Bytes)
{
    return LongField(OnePageFlag | static_cast<std::uint32_t>(Bytes.size()), LongRow(Bytes));
}

/// From the last piece to the first: each has the place of the next.
std::string TJetBuilder::OnPages(std::string_view Bytes, std::size_t PieceSize)
{
    std::uint32_t Next = 0;
    for (auto Start = (Bytes.size() - 1) / PieceSize * PieceSize;; Start -= PieceSize) {
        Next = LongRow(TBytes().U32(Next).Text(Bytes.substr(Start, PieceSize)).Str());
        if (Start == 0)
            return LongField(static_cast<std::uint32_t>(Bytes.size()), Next);
    }
}

/// Its place: the page, and the slot in the low byte.
std::uint32_t TJetBuilder::LongRow(std::string_view Bytes)
{
    if (Pages.back().empty() || !AddRow(Pages.back(), Bytes)) {
        Pages.push_back(EmptyPage(DataPage, LongValueOwner));
        if (!AddRow(Pages.back(), Bytes))
            throw std::length_error("a piece of a long value does not fit on a page");
    }
    const auto Slot = U16At(Pages.back(), SlotsStart() - 2) - 1;
    return static_cast<std::uint32_t>(Pages.size() - 1) << 8 | Slot;
}

std::string TJetBuilder::Stored(std::u16string_view Name) const
{
    return IsJet3() ? std::string(Name.begin(), Name.end()) : JetText(Name);
}

/// row := count fixed variable end-of-variable starts-of-variable, last first, count-of-variable marks
std::string TJetBuilder::Row(const std::vector<TValue>& Values, const std::vector<TField>& Fields) const
{
    if (Values.size() != Fields.size())
        throw std::length_error("a record needs a value for each field");
    std::string Fixed, Variable, Marks((Fields.size() + 7) / 8, '\0');
    std::vector<std::size_t> Starts;
    const std::size_t FixedStart = IsJet3() ? 1 : 2;
    for (std::size_t I = 0; I < Fields.size(); ++I) {
        if (Values[I])
            Marks[I / 8] |= static_cast<char>(1 << I % 8);
        if (const auto Size = Fields[I].FixedSize())
            Fixed += (Values[I].value_or("") + std::string(*Size, '\0')).substr(0, *Size);
    }
    for (std::size_t I = 0; I < Fields.size(); ++I)
        if (!Fields[I].FixedSize()) {
            Starts.push_back(FixedStart + Fixed.size() + Variable.size());
            Variable += Values[I].value_or("");
        }
    Starts.push_back(FixedStart + Fixed.size() + Variable.size());

    TBytes Row;
    const auto Number = [&Row, this](std::size_t Value) {
        IsJet3() ? Row.U8(static_cast<unsigned>(Value)) : Row.U16(static_cast<unsigned>(Value));
    };
    Number(Fields.size());
    Row.Text(Fixed).Text(Variable);
    std::for_each(Starts.rbegin(), Starts.rend(), Number);
    Number(Starts.size() - 1);
    if (IsJet3() && Row.Str().size() > 0xFF)
        throw std::length_error("a record of Jet 3 this long has parts that nothing here writes");
    return Row.Text(Marks);
}

std::string TJetBuilder::EmptyPage(unsigned Kind, std::uint32_t Owner) const
{
    std::string Page = TBytes().U8(Kind).U8(1).U16(0).U32(Owner);
    Page.resize(PageSize());
    return Page;
}

/// False when it does not fit. Rows stand at the end of their page, the first one last.
bool TJetBuilder::AddRow(std::string& Page, std::string_view Row, unsigned Flags) const
{
    const auto Count = U16At(Page, SlotsStart() - 2);
    const std::size_t Slot = SlotsStart() + 2 * Count;
    const std::size_t End = Count > 0 ? U16At(Page, Slot - 2) & 0x1FFF : PageSize();
    if (Slot + 2 + Row.size() > End)
        return false;
    const auto Start = End - Row.size();
    Put(Page, Start, Row);
    Put(Page, Slot, TBytes().U16(static_cast<unsigned>(Start) | Flags));
    Put(Page, SlotsStart() - 2, TBytes().U16(Count + 1));
    return true;
}

std::string TJetBuilder::Build() const
{
    auto All = Pages;
    All[0] = Header();
    All[MapPage] = EmptyPage(DataPage, 0);
    std::vector<std::uint32_t> DefinitionPages;
    for (const auto& Table : Tables) {
        const auto MapRow = static_cast<unsigned>(2 * DefinitionPages.size());
        DefinitionPages.push_back(static_cast<std::uint32_t>(All.size()));
        All.emplace_back();
        AddTable(All, Table, MapRow, DefinitionPages.back());
    }
    AddTable(All, Catalog(DefinitionPages), static_cast<unsigned>(2 * Tables.size()), CatalogPage);

    std::string File;
    for (std::uint32_t Number = 0; Number < All.size(); ++Number) {
        if (Key != 0 && Number > 0)
            Encode(All[Number], 0, PageSize(), Key ^ Number);
        File += All[Number];
    }
    return File;
}

std::string TJetBuilder::Header() const
{
    std::string Page =
        TBytes().U32(0x100).Text(Version < Ace12 ? "Standard Jet DB" : "Standard ACE DB").U8(0).U32(Version);
    Page.resize(PageSize());
    Put(Page, 0x3C, TBytes().U16(CodePageNumber));
    Put(Page, 0x3E, TBytes().U32(Key));
    Encode(Page, EncodedStart, IsJet3() ? 126 : 128, HeaderKey);
    return Page;
}

/// The definition in page `Page`, which is there already, then the records.
void TJetBuilder::AddTable(TPages& All, const TTable& Table, unsigned MapRow, std::uint32_t Page) const
{
    constexpr std::size_t HeadSize = 8;             // of a page that goes on with a definition
    const auto Whole = Definition(Table, MapRow);
    All[Page] = Whole.substr(0, PageSize());
    All[Page].resize(PageSize());
    auto Last = Page;
    for (auto Start = PageSize(); Start < Whole.size(); Start += PageSize() - HeadSize) {
        const auto Next = static_cast<std::uint32_t>(All.size());
        Put(All[Last], 4, TBytes().U32(Next));
        Last = Next;
        All.push_back(EmptyPage(DefinitionPage, 0));
        Put(All.back(), HeadSize, std::string_view(Whole).substr(Start, PageSize() - HeadSize));
    }
    const auto FirstPage = static_cast<std::uint32_t>(All.size());
    const auto Count = AddRecords(All, Table, Page);
    std::string Map = TBytes().U8(0).U32(FirstPage).Zeros(MapSize);
    for (std::uint32_t I = 0; I < Count; ++I)
        Map[5 + I / 8] |= static_cast<char>(1 << I % 8);
    if (Count > 8 * MapSize || !AddRow(All[MapPage], Map) || !AddRow(All[MapPage], std::string(5 + MapSize, '\0')))
        throw std::length_error("a map of pages does not fit");
}

/// How many pages they take.
std::uint32_t TJetBuilder::AddRecords(TPages& All, const TTable& Table, std::uint32_t Owner) const
{
    const auto First = All.size();
    const auto Add = [&](std::string_view Row, unsigned Flags) {
        if (All.size() == First || !AddRow(All.back(), Row, Flags)) {
            All.push_back(EmptyPage(DataPage, Owner));
            if (!AddRow(All.back(), Row, Flags))
                throw std::length_error("a record does not fit on a page");
        }
        return static_cast<std::uint32_t>(All.size() - 1) << 8 | (U16At(All.back(), SlotsStart() - 2) - 1);
    };
    for (const auto& Row : Table.Rows) {
        auto Place = Add(Row.Bytes, Row.Flags);
        for (int Hop = 1; Hop < Row.Hops; ++Hop)
            Place = Add(TBytes().U32(Place).Str(), PointerFlag | TargetFlag);
        if (Row.Hops > 0)
            Add(TBytes().U32(Place).Str(), PointerFlag);
    }
    return static_cast<std::uint32_t>(All.size() - First);
}

std::string TJetBuilder::Definition(const TTable& Table, unsigned MapRow) const
{
    const auto& Fields = Table.Fields;
    const auto Live = static_cast<unsigned>(std::ranges::count(Fields, false, &TField::IsDropped));
    const auto Variable = static_cast<unsigned>(
        std::ranges::count_if(Fields, [](const TField& Field) { return !Field.FixedSize(); }));
    const auto Deleted = std::ranges::count(Table.Rows, PointerFlag | TargetFlag, &TRow::Flags);
    const auto Records = Table.Counted.value_or(static_cast<std::uint32_t>(std::ssize(Table.Rows) - Deleted));
    const auto Kind = static_cast<unsigned>(Table.Flags != 0 ? 'S' : 'N');

    TBytes Columns, Names;
    unsigned FixedStart = 0, VariableNumber = 0;
    for (unsigned Number = 0; Number < Fields.size(); ++Number) {
        const auto& Field = Fields[Number];
        const auto Size = Field.FixedSize();
        const unsigned Stored = Field.Type == afBoolean ? 1 : Size ? static_cast<unsigned>(*Size) : Field.Size;
        const unsigned Flags = Size ? 3 : 2;        // fixed; may be null
        if (!Field.IsDropped) {
            if (IsJet3())
                Columns.U8(Field.Type).U16(Number).U16(VariableNumber).U16(Number).U32(0).U16(0).U8(Flags);
            else
                Columns.U8(Field.Type).U32(0).U16(Number).U16(VariableNumber).U16(Number).U8(Field.Precision)
                    .U8(Field.Scale).U16(0).U8(Flags).U8(Field.IsCalculated ? 0xC0 : 0).U32(0);
            Columns.U16(Size ? FixedStart : 0).U16(Stored);
            const auto NameSize = static_cast<unsigned>(Field.Name.size());
            (IsJet3() ? Names.U8(NameSize) : Names.U16(NameSize)).Text(Field.Name);
        }
        if (Size)
            FixedStart += static_cast<unsigned>(*Size);
        else
            ++VariableNumber;
    }

    TBytes Rest;                                    // after the head and the size
    if (IsJet3())
        Rest.U32(Records).U32(0).U8(Kind);
    else
        Rest.U32(0).U32(Records).Zeros(20).U8(Kind);
    Rest.U16(static_cast<unsigned>(Fields.size())).U16(Variable).U16(Live).U32(0).U32(0);
    Rest.U32(MapPage << 8 | MapRow).U32(MapPage << 8 | (MapRow + 1));
    Rest.Text(Columns).Text(Names).U16(0xFFFF);
    const auto Size = static_cast<std::uint32_t>(Rest.Str().size());
    return TBytes().U8(DefinitionPage).U8(1).U16(0).U32(0).U32(Size).Text(Rest);
}

/// MSysObjects, with a record for each table, itself included.
TJetBuilder::TTable TJetBuilder::Catalog(const std::vector<std::uint32_t>& DefinitionPages) const
{
    TTable Objects{.Name = Stored(u"MSysObjects"), .ObjectType = 1, .Flags = 0x80000000};
    Objects.Fields = {{Stored(u"Id"), afLong, 4, 0, 0}, {Stored(u"Name"), afText, 255, 0, 0},
                      {Stored(u"Type"), afInteger, 2, 0, 0}, {Stored(u"Flags"), afLong, 4, 0, 0},
                      {Stored(u"LvProp"), afOle, 0, 0, 0}};
    const auto Add = [&](const TTable& Table, std::uint32_t Page) {
        Objects.Rows.push_back({Row({JetLong(Page), Table.Name, JetLong(Table.ObjectType, 2), JetLong(Table.Flags),
                                     std::nullopt}, Objects.Fields), 0, 0});
    };
    Add(Objects, CatalogPage);
    for (std::size_t I = 0; I < Tables.size(); ++I)
        Add(Tables[I], DefinitionPages[I]);
    return Objects;
}

} // namespace kv
