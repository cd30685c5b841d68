// KvDbaseBuilder - writes dBase and FoxPro tables (.dbf) and their memos (.dbt, .fpt) for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// Values as a record stores them; decimal numbers and dates are texts.
std::string DbaseLong(std::int32_t Value);
std::string DbaseDouble(double Value);
std::string DbaseAmount(std::int64_t TenThousandths);
std::string DbaseMoment(std::int32_t JulianDay, std::int32_t Milliseconds);
/// A text of variable size: its size stands in the last byte of the field's `Size` bytes.
std::string DbaseVarText(std::string_view Text, std::size_t Size);

/// A table with the fields and records that a test asks for. Valid as built; a test that wants damage changes
/// bytes of the result.
class TDbaseBuilder
{
public:
    /// 0x02 dBase II, 0x03 dBase III, 0x04 and 0x8C dBase 7, 0x30 Visual FoxPro, ...
    explicit TDbaseBuilder(unsigned VersionByte = 0x03) : Version(VersionByte) {}

    /// `Flags` are those of Visual FoxPro: 1 hidden, 2 nullable, 4 binary, 8 counts up.
    TDbaseBuilder& Field(std::string_view Name, char Letter, unsigned Size, unsigned Decimals = 0,
                         unsigned Flags = 0);
    /// One stored value a field; what is shorter than its field is filled up with blanks.
    TDbaseBuilder& Record(const std::vector<std::string>& Values, char Mark = ' ');
    TDbaseBuilder& Deleted(const std::vector<std::string>& Values) { return Record(Values, '*'); }

    TDbaseBuilder& Language(unsigned Driver);       ///< The byte of the language driver.
    TDbaseBuilder& Language(std::string_view Driver); ///< Its name, of dBase 7.
    TDbaseBuilder& Encrypted();

    std::string Build() const;

private:
    struct TField
    {
        std::string Name;
        char Letter;
        unsigned Size, Decimals, Flags;
    };

    std::string ListedField(const TField& Field) const;
    std::string Header(std::size_t HeaderSize, std::size_t RecordSize) const;

    unsigned Version;
    std::vector<TField> Fields;
    std::vector<std::string> Records;
    unsigned LanguageByte = 0;
    std::string LanguageName;
    bool IsEncrypted = false;
};

/// Files of memos. Each `Add` gives the number of the memo's block.
class TDbaseMemoBuilder
{
public:
    enum TKind { Dbase3, Dbase4, FoxPro };

    explicit TDbaseMemoBuilder(TKind FileKind, unsigned BlockBytes = 512);

    std::uint32_t Add(std::string_view Text);

    const std::string& Build() const { return File; }

private:
    const TKind Kind;
    const std::size_t BlockSize;
    std::string File;
};

} // namespace kv
