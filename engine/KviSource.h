// KviSource - what a source shows of itself: its parts, its columns, its first rows, and where a record
// stands in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KvField.h"
#include "KvVariant.h"

namespace kv {

/// Where a record stands in its source.
struct TKvISourcePosition
{
    std::string_view Unit = "record"; ///< What the number counts: "line", "row", "record". Static text.
    std::int64_t Number = 0;                        ///< From 1; 0: there is no current record.
    /// Of its first byte in the file; -1 where there is none.
    std::int64_t Offset = -1;
    /// The line of the file in which it begins, as programs count them that know no records over several
    /// lines; 0 where there is none.
    std::int64_t FileLine = 0;

    /// For messages: "line 18", "line 18 (line 20 of the file)".
    std::string Text() const
    {
        const auto Place = std::string(Unit) + " " + std::to_string(Number);
        const bool Differs = FileLine > 0 && FileLine != Number;
        return Differs ? Place + " (line " + std::to_string(FileLine) + " of the file)" : Place;
    }
};

/// A column that a source offers. Texts are in the process's code page.
struct TKvISourceColumn
{
    std::string Name = {};                          ///< As mapping lines name it: "Field3".
    /// As the source itself calls it; empty when it does not.
    std::string Title = {};
    /// The field that would hold its values, where the source knows.
    TFieldType DataType = ftUnknown;
    int Size = 0;                                   ///< Characters or bytes of that field; 0: no limit.
    std::string TypeName = {};                      ///< As the source calls its type: "Decimal (18, 2)".
};

/// What a name on the right side of a mapping line means to a source.
enum TKvISourceNameKind {
    snColumn,                                       ///< One of its columns.
    /// A column that it lacks: the field stays empty where it is missing.
    snMissing,
    snBlank,                                        ///< A column without values: the field stays empty.
    snByOrder,                                      ///< Nothing: columns go to the mappings in their order.
    snConstant,                                     ///< No column: every record gets the name itself.
    snNothing                                       ///< No column, nor could it be one.
};

struct TKvISourceName
{
    TKvISourceNameKind Kind = snConstant;
    std::string Name;                               ///< As the source spells it.
};

/// A value as a run would get it, before it is converted for a field.
struct TKvISourceValue
{
    TVariant Value = {};                            ///< Owned. Null when it cannot be read.
    std::string Error = {};                         ///< Why it cannot be read; empty when it can.
};

struct TKvISourceRow
{
    TKvISourcePosition Position;
    /// By column; a row may hold more or fewer than there are columns.
    std::vector<TKvISourceValue> Values;
};

/// The beginning of a source.
struct TKvISourceView
{
    std::vector<TKvISourceColumn> Columns;
    /// Columns that the source offers; those after them were met in wider rows.
    std::size_t Offered = 0;
    std::vector<TKvISourceRow> Rows;
    bool HasMore = false;                           ///< There are rows after these, up to RowLast.
};

/// A sheet of a workbook, a table of a database, a table of a page.
struct TKvISourcePart
{
    /// In the process's code page; empty: it has only its number.
    std::string Name = {};
    int Rows = 0, Columns = 0;                      ///< As far as a run would read; -1: not counted.
    std::vector<TKvISourceColumn> Fields = {};      ///< Where the source declares them.
    bool IsSystem = false;                          ///< The source keeps it for itself.
    bool IsHidden = false;                          ///< Its own program does not show it.
    /// Why it cannot be opened; the figures then mean nothing.
    std::string Error = {};
};

/// What a source has met that its user should know.
enum TKvISourceRemarkKind {
    /// Rows hold fewer values than the header, or the first row, has: Count of them, the first being First.
    srFewerValues,
    srMoreValues,                                   ///< The same for more values.
    /// Limit rows are declared and read; values go down to row Count.
    srRowsBeyondExtent,
    /// Limit columns are declared and read; values go up to column Count.
    srColumnsBeyondExtent,
    /// Count values stand right of the last column that can be read.
    srCellsBeyondLastColumn,
    /// The rows of Count tables were read one after the other.
    srSeveralTables,
    /// Count rows without values, the first being First, were left out.
    srEmptyRows,
    /// Count rows, the first being First, hold characters of several bytes, which positions do not count.
    srWideCharacters,
    /// Count values are 8-bit text, not ASCII, of which the source does not name the code page.
    srOldText,
    /// The file holds its table twice, and only the older form, which may lack characters, can be read:
    /// Reason tells why.
    srOlderWorkbook,
    /// The file calls its encoding Name, which nobody knows: its text is taken as if it said nothing.
    srUnknownEncoding,
    /// Not all of its text is of the encoding Name, which it declares or UTF-8 is; values that are none are
    /// taken for the legacy code page.
    srForeignText,
    /// Bytes have no meaning in the encoding Name: records that need them are refused.
    srUndefinedBytes,
    /// The file ends inside a table, as one does that was cut off.
    srCutOff,
    /// Count records are no more than a log of changes: others have replaced them, or they are deleted.
    srReplacedRecords,
    /// Count elements inside records are no values: they hold elements, or come twice.
    srElementsLeftOut,
    /// Text beyond ASCII, first in row First, is of no code page that the source names.
    srTextOfNoPage,
    srColumnLeftOut,                                ///< Column Name cannot be read: Reason.
    srBytesLeftOut,                                 ///< Count bytes of each row belong to no column.
    /// Count rows stand behind the Limit that the source counts, and are not read.
    srRowsBeyondCount,
    /// Count rows are whole of the Limit that the source counts: Reason.
    srRowsMissing,
    /// Numbers of Count rows, the first being First, had no room where they stand and are read as null.
    srNumbersLost
};

struct TKvISourceRemark
{
    TKvISourceRemarkKind Kind;
    std::int64_t Count = 0;
    std::int64_t First = 0;                         ///< The row to which Count begins, from 1.
    /// With srFewerValues and srMoreValues the row that is compared with.
    std::int64_t Limit = 0;
    bool HasHeader = false;                         ///< That row is a header.
    std::string Name = {}, Reason = {};             ///< In the process's code page.
};

/// What to look at.
struct TKvISourceLook
{
    int Rows = 20;                                  ///< From RowFirst on, and none after RowLast.
    /// The row above RowFirst that names the columns; 0: none does.
    int HeaderRow = 0;
    /// Names as in mappings; none: all that the source offers.
    std::vector<std::string> Columns = {};
};

} // namespace kv
