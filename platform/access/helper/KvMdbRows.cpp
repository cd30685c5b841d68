#include "KvMdbRows.h"

#include <cstring>

#include "KvAccessProtocol.h"
#include "KvByteCursor.h"
#include "KvException.h"
#include "KvMdbCalculated.h"

namespace kv {

namespace {

// A slot at the start of a page: where its row begins, and two flags.
constexpr unsigned PositionMask = 0x1FFF;
constexpr unsigned MovedFlag = 0x4000;              // there is only a pointer to the row, in another page
constexpr unsigned DeletedFlag = 0x8000;            // no row, or one that a pointer leads to

constexpr std::size_t PointerSize = 4;              // slot:u8 page:u24
constexpr int MaxMoves = 8;                         // from pointer to pointer

} // namespace

TMdbRows::TMdbRows(const TMdbFile& TheFile, MdbCatalogEntry& Entry)
    : File(TheFile), Handle(TheFile.Handle()), Table(mdb_read_table(&Entry)), Visited(TheFile.PageCount())
{
    if (!Table)
        throw EFormatError("the definition of table " + std::string(Entry.object_name) + " cannot be read");
    if (Table->num_cols == 0 || Table->num_cols > TAccessBounds::MaxFields)
        RaiseDamaged("it claims to have " + std::to_string(Table->num_cols) + " fields");
    const auto* const Columns = mdb_read_columns(Table.get());
    if (!Columns || Columns->len != Table->num_cols)
        RaiseDamaged("its fields cannot be read");
    for (std::size_t I = 0; I < FieldCount(); ++I)
        if (!TMdbFile::IsName(Column(I).name))
            RaiseDamaged("the name of field " + std::to_string(I + 1) + " cannot be read");
    Calculated = FindCalculatedFields(File, *Table);
    mdb_rewind_table(Table.get());
}

const MdbColumn& TMdbRows::Column(std::size_t Field) const
{
    return *static_cast<const MdbColumn*>(g_ptr_array_index(Table->columns, Field));
}

bool TMdbRows::Next()
{
    ++Number;                                       // errors are about the record that is looked for
    do {
        while (NextSlot < PageRows)
            if (LoadRow(NextSlot++))
                return true;
    } while (NextPage());
    if (--Number < RecordCount())
        throw EFormatError("table " + std::string(Table->name) + " is damaged: its definition counts " +
                           std::to_string(RecordCount()) + " records, but only " + std::to_string(Number) +
                           " can be found");
    return false;
}

bool TMdbRows::NextPage()
{
    const auto Page = static_cast<std::size_t>(mdb_read_next_dpg(Table.get()));
    NextSlot = PageRows = 0;
    if (Page == 0)
        return false;
    if (Page >= Visited.size() || Visited[Page])
        RaiseDamaged("page " + std::to_string(Page) +
                     (Page < Visited.size() ? " comes twice" : " is not there, the file is cut off"));
    Visited[Page] = true;
    PageRows = static_cast<unsigned>(mdb_get_int16(Handle->pg_buf, Handle->fmt->row_count_offset));
    if (PageRows > File.PageSize() / sizeof(std::uint16_t))
        RaiseDamaged("page " + std::to_string(Page) + " claims to have " + std::to_string(PageRows) +
                     " records");
    return true;
}

/// False when the slot holds no record.
bool TMdbRows::LoadRow(unsigned Slot)
{
    int Position = 0;
    std::size_t Size = 0;
    const bool IsSound = mdb_find_row(Handle, static_cast<int>(Slot), &Position, &Size) == 0;
    const auto Flags = static_cast<unsigned>(Position);
    if (Flags & DeletedFlag)
        return false;
    const std::size_t Start = Flags & PositionMask;
    if (!IsSound || Start + Size > File.PageSize())
        RaiseDamaged("its position is out of range");
    if (Flags & MovedFlag) {
        if (Size < PointerSize)
            RaiseDamaged("its pointer is cut off");
        return LoadMovedRow(
            static_cast<std::uint32_t>(mdb_get_int32(Handle->pg_buf, static_cast<int>(Start))));
    }
    Crack(Start, Size);
    Row = {reinterpret_cast<const char*>(Handle->pg_buf) + Start, Size};
    return true;
}

/// A record that has outgrown its page stands in another one.
bool TMdbRows::LoadMovedRow(std::uint32_t Pointer)
{
    for (int Move = 0; Move < MaxMoves; ++Move) {
        void* Page = nullptr;
        int Position = 0;
        std::size_t Size = 0;
        const bool IsSound = mdb_find_pg_row(Handle, static_cast<int>(Pointer), &Page, &Position, &Size) == 0;
        const auto Start = static_cast<unsigned>(Position) & PositionMask;
        if (!IsSound || Start + Size > File.PageSize())
            RaiseDamaged("the page that it was moved to cannot be read");
        // The library leaves the flags of the slot out of the position.
        const auto Slot = static_cast<int>(Pointer & 0xFF);
        if (mdb_get_int16(Page, Handle->fmt->row_count_offset + 2 + 2 * Slot) & MovedFlag) {
            if (Size < PointerSize)
                RaiseDamaged("its pointer is cut off");
            Pointer = static_cast<std::uint32_t>(mdb_get_int32(Page, static_cast<int>(Start)));
            continue;
        }
        // The library takes rows apart in its first page buffer, and long values are read through the
        // second one: the record goes into a buffer of its own.
        std::memcpy(MovedRow.data(), static_cast<const char*>(Page) + Start, Size);
        mdb_swap_pgbuf(Handle);
        Crack(Start, Size);
        mdb_swap_pgbuf(Handle);
        Row = {MovedRow.data(), Size};
        return true;
    }
    RaiseDamaged("it was moved in a circle");
}

void TMdbRows::Crack(std::size_t Start, std::size_t Size)
{
    // It answers with the columns that the row has room for, those since deleted among them.
    const int Room = mdb_crack_row(Table.get(), static_cast<int>(Start), Size, Fields.data());
    if (Room < 0)
        RaiseDamaged("it cannot be taken apart");
    RowStart = Start;
    for (std::size_t I = 0; I < FieldCount(); ++I) {
        auto& Field = Fields[I];
        if (Column(I).col_num >= Room)              // added later: what seems its mark is not of this row
            Field.is_null = 1;
        if (Field.is_null)
            continue;
        const auto Begin = static_cast<std::size_t>(Field.start),
                   Length = static_cast<std::size_t>(Field.siz);
        if (Field.start < 0 || Field.siz < 0 || Begin < Start || Begin > Start + Size ||
            Length > Start + Size - Begin)
            RaiseDamaged("its fields are longer than itself");
    }
}

TMdbValue TMdbRows::Value(std::size_t Field) const
{
    const auto& From = Fields[Field];
    if (From.is_null)
        return {};
    return {false,
            Row.substr(static_cast<std::size_t>(From.start) - RowStart, static_cast<std::size_t>(From.siz))};
}

std::string TMdbRows::Place() const
{
    return "record " + std::to_string(Number) + " of table " + Table->name;
}

void TMdbRows::RaiseDamaged(const std::string& What) const
{
    throw EFormatError(Number > 0 ? Place() + " is damaged: " + What
                                  : "table " + std::string(Table->name) + " is damaged: " + What);
}

} // namespace kv
