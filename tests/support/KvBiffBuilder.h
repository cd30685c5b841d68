// KvBiffBuilder - writes the records of Excel files of all versions for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KvBytes.h"

namespace kv {

enum TBiffVersion { bv2, bv3, bv4, bv5, bv8 };

/// What a BOF record begins.
enum TBiffPart : std::uint16_t
{
    bpGlobals = 0x0005,
    bpModule = 0x0006,
    bpSheet = 0x0010,
    bpChart = 0x0020,
    bpMacro = 0x0040
};

/// Records, one after the other. A cell's row, column and XF come first, its value last.
class TBiffBuilder
{
public:
    TBiffBuilder() : TBiffBuilder(bv8) {}
    explicit TBiffBuilder(TBiffVersion TheVersion) : Version(TheVersion) {}

    TBiffBuilder& Record(std::uint16_t Id, std::string_view Body);
    TBiffBuilder& Add(const TBiffBuilder& Other);
    TBiffBuilder& Add(std::string_view Records);    ///< Whole ones, such as BiffSharedStrings makes.

    TBiffBuilder& Bof(TBiffPart Part = bpSheet);    ///< In the version's own record.
    TBiffBuilder& Eof() { return Record(0x000A, {}); }
    TBiffBuilder& FilePass() { return Record(0x002F, TBytes().Zeros(6)); }
    TBiffBuilder& CodePage(unsigned Number) { return Record(0x0042, TBytes().U16(Number)); }
    TBiffBuilder& DateMode(unsigned Is1904) { return Record(0x0022, TBytes().U16(Is1904)); }
    /// Of a user-defined number format; Excel 2 to 4 number theirs in order.
    TBiffBuilder& Format(unsigned Index, std::string_view Pattern);
    TBiffBuilder& Xf(unsigned Format);              ///< In the version's own record.
    /// Rows and columns: first, and one past the last.
    TBiffBuilder& Dimensions(unsigned FirstRow, unsigned EndRow, unsigned FirstCol, unsigned EndCol);

    // Cells of Excel 2, with three attribute bytes: XF, format and font, alignment.
    TBiffBuilder& Blank2(unsigned Row, unsigned Col, std::string_view Attributes);
    TBiffBuilder& Integer2(unsigned Row, unsigned Col, std::string_view Attributes, unsigned Value);
    TBiffBuilder& Number2(unsigned Row, unsigned Col, std::string_view Attributes, double Value);
    TBiffBuilder& Label2(unsigned Row, unsigned Col, std::string_view Attributes, std::string_view Text);
    TBiffBuilder& BoolErr2(unsigned Row, unsigned Col, std::string_view Attributes, unsigned Value,
                           bool IsError);
    TBiffBuilder& Formula2(unsigned Row, unsigned Col, std::string_view Attributes, std::string_view Result);

    // Cells from Excel 3 on.
    TBiffBuilder& Number(unsigned Row, unsigned Col, double Value, unsigned Xf = 0);
    TBiffBuilder& Rk(unsigned Row, unsigned Col, std::uint32_t Value, unsigned Xf = 0);
    TBiffBuilder& Label(unsigned Row, unsigned Col, std::string_view Text,
                        unsigned Xf = 0); ///< 8-bit, also in Excel 8.
    TBiffBuilder& LabelSst(unsigned Row, unsigned Col, std::uint32_t Index, unsigned Xf = 0);
    TBiffBuilder& BoolErr(unsigned Row, unsigned Col, unsigned Value, bool IsError);
    /// In the version's own record. `Result` has 8 bytes: a double, or one of the functions below.
    TBiffBuilder& Formula(unsigned Row, unsigned Col, std::string_view Result, unsigned Xf = 0);
    /// The text of the formula before it.
    TBiffBuilder& String(std::string_view Text);

    const std::string& Str() const { return Bytes; }
    std::size_t Size() const { return Bytes.size(); }

    const TBiffVersion Version;

private:
    std::string Bytes;
};

// Results of formulas that are no numbers.
std::string TextResult();
std::string BooleanResult(bool Value);
std::string ErrorResult(unsigned Code);
std::string EmptyResult();                          ///< A text without characters, in Excel 8.

/// RK values: an integer, a double whose low half is lost; both may stand for a hundredth of theirs.
std::uint32_t RkOfInteger(int Value, bool Hundredfold = false);
std::uint32_t RkOfDouble(double Value, bool Hundredfold = false);

/// A workbook stream of Excel 5 or 8: globals with an entry for each sheet, then the sheets.
class TWorkbookBuilder
{
public:
    explicit TWorkbookBuilder(TBiffVersion TheVersion = bv8) : Version(TheVersion) {}

    /// Records of the globals, before the entries of the sheets.
    TWorkbookBuilder& Globals(const TBiffBuilder& Records);
    /// Adds an entry and a substream with these records. The name is stored as 8-bit characters.
    TWorkbookBuilder& Sheet(std::string_view Name, const TBiffBuilder& Records, TBiffPart Part = bpSheet);
    /// The same with a name of 16-bit characters, as only Excel 8 has them.
    TWorkbookBuilder& Sheet(std::u16string_view Name, const TBiffBuilder& Records);

    std::string Build() const;
    /// Where the BOF of sheet `Index` stands in what Build makes.
    std::size_t OffsetOfSheet(std::size_t Index) const;

private:
    struct TSheet
    {
        std::string Name;                           // length, options, characters
        std::string Records;
        TBiffPart Part;
    };

    std::string EntryOf(const TSheet& Sheet, std::size_t Offset) const;

    TBiffVersion Version;
    std::string GlobalRecords;
    std::vector<TSheet> Sheets;
};

} // namespace kv
