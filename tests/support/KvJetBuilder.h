// KvJetBuilder - writes Access databases for tests: pages of 2048 bytes (Jet 3) or 4096 (Jet 4 and later).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvAccessTypes.h"
#include "KvJetValues.h"

namespace kv {

/// A database with the tables and records that a test asks for. Valid as built; a test that wants damage
/// changes bytes of the result.
class TJetBuilder
{
public:
    /// What a record has of a field: its bytes or, without any, null. For a Yes/No field any bytes are Yes.
    using TValue = std::optional<std::string>;

    static constexpr unsigned Jet3 = 0, Jet4 = 1, Ace12 = 2, Ace14 = 3;

    explicit TJetBuilder(unsigned Version = Jet4);

    /// Of the text of Jet 3.
    TJetBuilder& CodePage(unsigned Number);
    /// Every page but the first is encoded.
    TJetBuilder& Encoded(std::uint32_t Key);

    /// What follows is of this table.
    TJetBuilder& Table(std::u16string_view Name, int ObjectType = 1, std::uint32_t Flags = 0);
    /// The last table is a link to the table `Name` of `Database`.
    TJetBuilder& LinksTo(std::u16string_view Database, std::u16string_view Name);
    /// `Size` is that of texts and bytes. Records before it lack the field, as when it was added to the table
    /// later on.
    TJetBuilder& Field(std::u16string_view Name, TAccessFieldType Type, unsigned Size = 0);
    TJetBuilder& Decimal(std::u16string_view Name, unsigned Precision, unsigned Scale);
    /// Makes the last field one that Access calculates.
    TJetBuilder& Calculated();
    /// Takes the field of that name away; the records keep what they have of it.
    TJetBuilder& DropField(std::u16string_view Name);
    /// One value for each field that the table ever had.
    TJetBuilder& Record(const std::vector<TValue>& Values);
    /// A record that has outgrown its page: there is a pointer to it, and `Hops` - 1 more on the way.
    TJetBuilder& MovedRecord(const std::vector<TValue>& Values, int Hops = 1);
    TJetBuilder& DeletedRecord(const std::vector<TValue>& Values);
    /// The definition of the table counts this many records instead of those that are there.
    TJetBuilder& Counted(std::uint32_t Records);

    // A long value outside of its record; what the record has of it.
    std::string OnOnePage(std::string_view Bytes);
    std::string OnPages(std::string_view Bytes, std::size_t PieceSize);

    std::size_t PageSize() const { return IsJet3() ? 2048 : 4096; }
    std::string Build() const;

private:
    struct TRow
    {
        std::string Bytes;
        unsigned Flags;                             // of its slot
        int Hops;                                   // pointers that lead to it
    };
    struct TField
    {
        std::string Name;                           // as stored
        TAccessFieldType Type;
        unsigned Size, Precision, Scale;
        bool IsCalculated = false, IsDropped = false;

        /// Bytes that it takes in the fixed part of a record; none: it stands in the variable part.
        std::optional<std::size_t> FixedSize() const;
    };
    struct TTable
    {
        std::string Name;                           // as stored
        int ObjectType;
        std::uint32_t Flags;
        std::vector<TField> Fields = {};
        std::vector<TRow> Rows = {};
        std::optional<std::uint32_t> Counted = {};
        TValue Database = {}, ForeignName = {};     // of a link
    };
    using TPages = std::vector<std::string>;

    bool IsJet3() const { return Version == Jet3; }
    std::string Stored(std::u16string_view Name) const;
    std::string Row(const std::vector<TValue>& Values, const std::vector<TField>& Fields) const;

    std::uint32_t LongRow(std::string_view Bytes);
    std::string Header() const;
    std::string Definition(const TTable& Table, unsigned MapRow) const;
    std::string Column(const TField& Field, unsigned Number, unsigned FixedStart,
                       unsigned VariableNumber) const;
    void AddTable(TPages& All, const TTable& Table, unsigned MapRow, std::uint32_t Page) const;
    std::uint32_t AddRecords(TPages& All, const TTable& Table, std::uint32_t Owner) const;
    TTable Catalog(const std::vector<std::uint32_t>& DefinitionPages) const;

    const unsigned Version;
    unsigned CodePageNumber = 1252;
    std::uint32_t Key = 0;
    std::vector<TTable> Tables;
    TPages Pages;                                   // the first ones, then those of long values
};

} // namespace kv
