#include "KvMdbCalculated.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "KvByteCursor.h"
#include "KvException.h"

namespace kv {

namespace {

constexpr std::size_t NextPagePosition = 4;
constexpr std::size_t PageHeadSize = 8;             // of each page after the first
constexpr std::size_t ExtraFlagsPosition = 16;      // in a column
constexpr unsigned CalculatedFlags = 0xC0;
constexpr std::size_t SizePosition = 16;            // in a value
constexpr std::size_t ValuePosition = 20;

/// The first `Size` bytes of the definition that begins in `Page`, or fewer where its chain ends.
std::string ReadDefinition(const TMdbFile& File, std::uint32_t Page, std::size_t Size)
{
    std::string Definition;
    while (Definition.size() < Size && Page != 0 && mdb_read_pg(File.Handle(), Page) > 0) {
        const std::string_view Bytes(reinterpret_cast<const char*>(File.Handle()->pg_buf), File.PageSize());
        Page = LoadLittleEndian<std::uint32_t>(Bytes.data() + NextPagePosition);
        Definition += Bytes.substr(Definition.empty() ? 0 : PageHeadSize);
    }
    return Definition;
}

} // namespace

std::vector<bool> FindCalculatedFields(const TMdbFile& File, const MdbTableDef& Table)
{
    std::vector<bool> Calculated(Table.num_cols);
    if (File.Handle()->f->jet_version < MDB_VER_ACCDB_2010)
        return Calculated;
    const auto& Format = *File.Handle()->fmt;
    const std::size_t Start =
        Format.tab_cols_start_offset + std::size_t{Table.num_real_idxs} * Format.tab_ridx_entry_size;
    const std::size_t End = Start + std::size_t{Table.num_cols} * Format.tab_col_entry_size;
    if (End > File.Size())
        return Calculated;
    const auto Definition = ReadDefinition(File, static_cast<std::uint32_t>(Table.entry->table_pg), End);
    if (Definition.size() < End)
        return Calculated;
    for (std::size_t At = Start; At < End; At += Format.tab_col_entry_size) {
        if ((static_cast<unsigned char>(Definition[At + ExtraFlagsPosition]) & CalculatedFlags) !=
            CalculatedFlags)
            continue;
        // The library has the columns in the order of their numbers, the definition in another.
        const int Number = static_cast<unsigned char>(Definition[At + Format.col_num_offset]);
        for (std::size_t I = 0; I < Calculated.size(); ++I)
            if (static_cast<const MdbColumn*>(g_ptr_array_index(Table.columns, I))->col_num == Number)
                Calculated[I] = true;
    }
    return Calculated;
}

std::string_view CalculatedValue(std::string_view Stored)
{
    if (Stored.size() < ValuePosition)
        throw EFormatError("its calculated value is damaged: its beginning is cut off");
    const auto Size = LoadLittleEndian<std::uint32_t>(Stored.data() + SizePosition);
    if (Size > Stored.size() - ValuePosition)
        throw EFormatError("its calculated value is damaged: not all of it is there");
    return Stored.substr(ValuePosition, Size);
}

} // namespace kv
