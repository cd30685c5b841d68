// KvJobFindings - what an import meets and decides where nobody has told it: facts, which each program puts
// into words of its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KvException.h"

namespace kv {

/// What was found. The comments name the members of TJobFinding that hold its facts; Name is always the
/// source or destination in question where no other meaning is given.
enum TJobFindingKind {
    // --- The source cannot be one. Raised as EJobRefused. ---
    jfNoSuchKind,                                   ///< Value: no kind of source is called so.
    /// Sources of kind Value have no setting Was: "Layout", "Part".
    jfNoSuchSetting,
    /// The file is no text and of no other kind that is known.
    jfUnknownFile,
    jfIsDatabase,                                   ///< The file is a database into which imports go.
    jfRowsOutOfOrder,                               ///< The last row, Count, lies before the first, Number.
    /// Columns shall be found by name, but row 1 is imported. Unit
    jfNoHeaderLeft,
    jfNoPipe,                                       ///< Sources of kind Value cannot be read from a pipe.
    /// Text of kind Value has no code page that could be said.
    jfNoOemText,
    jfPartMissing,                                  ///< It has to be said which table of Names.
    jfNoSuchTable,                                  ///< Table Value is none of Names.
    jfNoSuchSheet,                                  ///< The same for a sheet.
    jfNoSuchTableNumber,                            ///< The page has tables 1 to Count, and not Value.
    jfNoTables,                                     ///< There are no tables in it.
    jfNoTitles,                                     ///< Row Number of sheet Count names no columns.
    jfNoHeader,                                     ///< There is no row to find columns by name. Unit
    /// Read classic, cells have no columns that could be named.
    jfClassicByOrder,

    jfNoSource,                                     ///< The saved import Name names no source.
    /// The saved import Name names Value, which is not there.
    jfSourceGone,
    /// The saved import Name names Value, which is no regular file.
    jfSourceNoFile,

    // --- The plan cannot be one. Raised as EJobRefused. ---
    /// None of the columns Names has the name of a field, of Fields.
    jfNoColumnMatches,
    jfNoColumns,                                    ///< There is no column to import, of Names.
    jfBadMapLine,                                   ///< Value is no pair of a field and a column.
    /// Value, of line Name or of the keys, is none of Fields.
    jfNoSuchField,
    jfFieldTwice,                                   ///< Line Name: the field Value has a column already.
    /// Line Name: the field Value is computed by the database.
    jfFieldReadOnly,
    /// Line Name: the name of field Value cannot stand in a mapping.
    jfFieldUnnameable,
    /// Value is no column of kind Was, which has Names, and would be none in any row.
    jfNoSuchColumn,
    /// Value is no column of the rows that were looked at: row Number has Count. Unit
    jfColumnMissing,
    /// Value cannot be what every record of a source of kind Was gets.
    jfNoConstant,
    /// Mode Number finds records by keys, and the table has no primary key.
    jfKeysMissing,
    jfKeyNotMapped,                                 ///< The key field Value gets no column.
    /// Decimal and thousand separator are the same, Character.
    jfSameSeparators,
    jfDateOrder,                                    ///< Dates in the order Value cannot be read.
    jfTableMissing,                                 ///< The destination's table has to be said: Names.
    jfSameFile,                                     ///< Source and destination are the same, Name.
    /// Value, at Place, has Character where no thousands end.
    jfNotThousands,
    /// The column that was called Value when saved, for field Was, is not
    jfColumnGone,
                                                    ///< among those of row Number. Unit
    /// Value, for setting Name of TJobFormats, is no code page that is known.
    jfCodePage,

    // --- How the source was read, told before the run. ---
    jfDelimiter,                                    ///< Character delimits values, as row Number has it.
    jfHeader,                                       ///< Row Number names the columns. Unit, Given a first row
    /// Sheet Number of Count, Value; Given when it was asked for.
    jfSheet,
    jfOnlyTable,                                    ///< Table Value, the only one.
    jfForeignText,                                  ///< The table does not name the code page of its text.
    /// Read classic, all records are imported, whatever rows were asked for.
    jfClassicRows,
    /// Read classic, rows only say how many records are taken.
    jfClassicCount,
    jfClassicCells,                                 ///< Read classic, cells go to mappings in their order.
    /// Row Number, which is imported, looks like a header. Unit
    jfLooksLikeHeader,
    /// Value, at Place, is no date as dates are read now; in the order Was with Character Count of the Limit
    /// values of its column are.
    jfOtherDates,
    /// The first text beyond ASCII, at Place, is UTF-8 and is read as code page Value.
    jfUtf8Text,
    /// Text at Place is no UTF-8; all that is none is taken for code page Value.
    jfLegacyText,
    /// Settings are those of file Value, which names the source Was.
    jfSaved,
    /// It has no mappings: the component joins columns and fields.
    jfMapsItself,
    /// The column called Value is now Name; it was Was when saved.
    jfColumnMoved,

    // --- What was left out or is odd, told after looking or after the run. ---
    /// Count values cannot be read; Value is why, of the first.
    jfUnreadable,
    /// Count rows, from row Number on, hold fewer values than row Limit.
    jfFewerValues,
    jfMoreValues,                                   ///< The same for more; Given when row Limit is a header.
    jfRowsBeyond,                                   ///< Values go down to row Count, Limit rows are read.
    jfColumnsBeyond,                                ///< The same for columns.
    /// Count values stand right of the last column that can be read.
    jfCellsBeyond,
    jfSeveralTables,                                ///< Rows of Count tables were read one after the other.
    /// Count rows without values, from row Number on, were left out.
    jfEmptyRows,
    /// Count rows, from row Number on, hold characters of several bytes; positions count bytes.
    jfWideCharacters,
    /// To delete a record deletes or changes records of table Name that refer to it.
    jfChangesOthers,
    /// A record to which one of table Name refers cannot be deleted.
    jfHeldByOthers,
    /// Count values, the first in row Number, are 8-bit text of an unknown code page. Unit
    jfOldText,
    /// An older copy was read: the newer cannot be. Was is why.
    jfOlderWorkbook,
    jfUnknownEncoding,                              ///< Nobody knows the encoding Value that the file names.
    /// Not all of the text is of encoding Value; what is none is taken for code page Was.
    jfForeignBytes,
    jfUndefinedBytes,                               ///< Bytes have no meaning in encoding Value.
    jfCutOff,                                       ///< The file ends inside a table.
    jfReplacedRecords,                              ///< Count records are deleted, or replaced by others.
    jfElementsLeftOut,                              ///< Count elements inside records are no values.
    jfColumnLeftOut,                                ///< Column Value cannot be read, as Was says.
    jfBytesLeftOut,                                 ///< Count bytes of each row belong to no column.
    /// Count rows stand behind the Limit that the source counts, and are not read.
    jfRowsBeyondCount,
    /// Count rows are whole of the Limit that the source counts, as Was says.
    jfRowsMissing,
    /// Numbers of Count rows, from row Number on, had no room where they stand: they count as empty.
    jfNumbersLost
};

/// One of them with its facts. Texts are UTF-8.
struct TJobFinding
{
    TJobFindingKind Kind;
    std::string Name = {};
    std::string Value = {};
    std::string Was = {};
    std::string Place = {};                         ///< "line 17"
    std::string Unit = {};                          ///< What a row of the source is called: "line".
    std::int64_t Number = 0, Count = 0, Limit = 0;
    char Character = '\0';
    bool Given = false;
    std::vector<std::string> Names = {}, Fields = {};
};

/// An import that cannot be, said before anything was changed. `Message` is for logs only.
class EJobRefused : public Exception
{
public:
    explicit EJobRefused(TJobFinding Found);

    TJobFinding Finding;
};

/// Raises EJobRefused.
[[noreturn]] void Refuse(TJobFinding Finding);

} // namespace kv
