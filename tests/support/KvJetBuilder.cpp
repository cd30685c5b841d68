#include "KvJetBuilder.h"

#include <algorithm>
#include <stdexcept>

#include "KvBytes.h"
#include "KvJetPage.h"

namespace kv {

namespace {

constexpr unsigned DataPage = 1, DefinitionPage = 2;
constexpr std::uint32_t MapPage = 1, CatalogPage = 2;
constexpr std::uint32_t LongValueOwner = 0x4C41564C; // "LVAL"
constexpr std::size_t MapSize = 64;                 // bytes, a bit a page
constexpr unsigned PointerFlag = 0x4000, TargetFlag = 0x8000; // of a slot; both together: deleted
constexpr std::uint32_t OnePageFlag = 0x40000000;   // of a long value
constexpr std::uint32_t HeaderKey = 0x6B39DAC7;     // of the header's encoded part
constexpr std::size_t EncodedStart = 0x18;

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

} // namespace

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

TJetBuilder& TJetBuilder::LinksTo(std::u16string_view Database, std::u16string_view Name)
{
    Tables.back().Database = JetInline(Stored(Database));
    Tables.back().ForeignName = Stored(Name);
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
    return JetLongValue(OnePageFlag | static_cast<std::uint32_t>(Bytes.size()), LongRow(Bytes));
}

/// From the last piece to the first: each has the place of the next.
std::string TJetBuilder::OnPages(std::string_view Bytes, std::size_t PieceSize)
{
    std::uint32_t Next = 0;
    for (auto Start = (Bytes.size() - 1) / PieceSize * PieceSize;; Start -= PieceSize) {
        Next = LongRow(TBytes().U32(Next).Text(Bytes.substr(Start, PieceSize)).Str());
        if (Start == 0)
            return JetLongValue(static_cast<std::uint32_t>(Bytes.size()), Next);
    }
}

/// Its place: the page, and the slot in the low byte.
std::uint32_t TJetBuilder::LongRow(std::string_view Bytes)
{
    if (Pages.back().empty() || !AddJetRow(Pages.back(), Bytes)) {
        Pages.push_back(EmptyJetPage(PageSize(), DataPage, LongValueOwner));
        if (!AddJetRow(Pages.back(), Bytes))
            throw std::length_error("a piece of a long value does not fit on a page");
    }
    return LastJetRow(Pages.back(), Pages.size() - 1);
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

std::string TJetBuilder::Build() const
{
    auto All = Pages;
    All[0] = Header();
    All[MapPage] = EmptyJetPage(PageSize(), DataPage, 0);
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
            EncodeJet(All[Number], 0, PageSize(), Key ^ Number);
        File += All[Number];
    }
    return File;
}

std::string TJetBuilder::Header() const
{
    std::string Page =
        TBytes().U32(0x100).Text(Version < Ace12 ? "Standard Jet DB" : "Standard ACE DB").U8(0).U32(Version);
    Page.resize(PageSize());
    PutBytes(Page, 0x3C, TBytes().U16(CodePageNumber));
    PutBytes(Page, 0x3E, TBytes().U32(Key));
    EncodeJet(Page, EncodedStart, IsJet3() ? 126 : 128, HeaderKey);
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
        PutBytes(All[Last], 4, TBytes().U32(Next));
        Last = Next;
        All.push_back(EmptyJetPage(PageSize(), DefinitionPage, 0));
        PutBytes(All.back(), HeadSize, std::string_view(Whole).substr(Start, PageSize() - HeadSize));
    }
    const auto FirstPage = static_cast<std::uint32_t>(All.size());
    const auto Count = AddRecords(All, Table, Page);
    std::string Map = TBytes().U8(0).U32(FirstPage).Zeros(MapSize);
    for (std::uint32_t I = 0; I < Count; ++I)
        Map[5 + I / 8] |= static_cast<char>(1 << I % 8);
    if (Count > 8 * MapSize || !AddJetRow(All[MapPage], Map) ||
        !AddJetRow(All[MapPage], std::string(5 + MapSize, '\0')))
        throw std::length_error("a map of pages does not fit");
}

/// How many pages they take.
std::uint32_t TJetBuilder::AddRecords(TPages& All, const TTable& Table, std::uint32_t Owner) const
{
    const auto First = All.size();
    const auto Add = [&](std::string_view Row, unsigned Flags) {
        if (All.size() == First || !AddJetRow(All.back(), Row, Flags)) {
            All.push_back(EmptyJetPage(PageSize(), DataPage, Owner));
            if (!AddJetRow(All.back(), Row, Flags))
                throw std::length_error("a record does not fit on a page");
        }
        return LastJetRow(All.back(), All.size() - 1);
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
        if (!Field.IsDropped) {
            Columns.Text(Column(Field, Number, FixedStart, VariableNumber));
            const auto Size = static_cast<unsigned>(Field.Name.size());
            (IsJet3() ? Names.U8(Size) : Names.U16(Size)).Text(Field.Name);
        }
        if (const auto Size = Field.FixedSize())
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

/// Of a definition; `FixedStart` and `VariableNumber` count what is before it in a record.
std::string TJetBuilder::Column(const TField& Field, unsigned Number, unsigned FixedStart,
                                unsigned VariableNumber) const
{
    const auto Fixed = Field.FixedSize();
    const unsigned Size = Field.Type == afBoolean ? 1 : Fixed ? static_cast<unsigned>(*Fixed) : Field.Size;
    const unsigned Flags = Fixed ? 3 : 2;           // fixed; may be null
    TBytes Column;
    Column.U8(Field.Type);
    if (!IsJet3())
        Column.U32(0);
    Column.U16(Number).U16(VariableNumber).U16(Number);
    if (IsJet3())
        Column.Zeros(6).U8(Flags);
    else
        Column.U8(Field.Precision).U8(Field.Scale).U16(0).U8(Flags).U8(Field.IsCalculated ? 0xC0 : 0).U32(0);
    return Column.U16(Fixed ? FixedStart : 0).U16(Size);
}

/// MSysObjects, with a record for each table, itself included.
TJetBuilder::TTable TJetBuilder::Catalog(const std::vector<std::uint32_t>& DefinitionPages) const
{
    TTable Objects{.Name = Stored(u"MSysObjects"), .ObjectType = 1, .Flags = 0x80000000};
    Objects.Fields = {{Stored(u"Id"), afLong, 4, 0, 0}, {Stored(u"Name"), afText, 255, 0, 0},
                      {Stored(u"Type"), afInteger, 2, 0, 0}, {Stored(u"Flags"), afLong, 4, 0, 0},
                      {Stored(u"LvProp"), afOle, 0, 0, 0}, {Stored(u"Database"), afMemo, 0, 0, 0},
                      {Stored(u"ForeignName"), afText, 255, 0, 0}};
    const auto Add = [&](const TTable& Table, std::uint32_t Page) {
        Objects.Rows.push_back(
            {Row({JetLong(Page), Table.Name, JetLong(Table.ObjectType, 2), JetLong(Table.Flags),
                  std::nullopt, Table.Database, Table.ForeignName}, Objects.Fields), 0, 0});
    };
    Add(Objects, CatalogPage);
    for (std::size_t I = 0; I < Tables.size(); ++I)
        Add(Tables[I], DefinitionPages[I]);
    return Objects;
}

} // namespace kv
