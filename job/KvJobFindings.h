// KvJobFindings - what an import meets and decides where nobody has told it: facts, which each program puts
// into words of its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KvException.h"

namespace kv {

/// What was found. The comments name the members of TJobFinding that hold its facts; Name is always the source
/// or destination in question where no other meaning is given.
enum TJobFindingKind {
    // --- The source cannot be one. Raised as EJobRefused. ---
    jfNoSuchKind,                                   ///< Value: no kind of source is called so.
    jfNoSuchSetting,                                ///< Sources of kind Value have no setting Was: "Layout", "Part".
    jfUnknownFile,                                  ///< The file is no text and of no other kind that is known.
    jfIsDatabase,                                   ///< The file is a database into which imports go.
    jfRowsOutOfOrder,                               ///< The last row, Count, lies before the first, Number.
    jfNoHeaderLeft,                                 ///< Columns shall be found by name, but row 1 is imported. Unit
    jfNoPipe,                                       ///< Sources of kind Value cannot be read from a pipe.
    jfNoOemText,                                    ///< Text of kind Value has no code page that could be said.
    jfPartMissing,                                  ///< It has to be said which table of Names.
    jfNoSuchTable,                                  ///< Table Value is none of Names.
    jfNoSuchSheet,                                  ///< The same for a sheet.
    jfNoSuchTableNumber,                            ///< The page has tables 1 to Count, and not Value.
    jfNoTables,                                     ///< There are no tables in it.
    jfNoTitles,                                     ///< Row Number of sheet Count names no columns.
    jfNoHeader,                                     ///< There is no row to find columns by name. Unit
    jfClassicByOrder,                               ///< Read classic, cells have no columns that could be named.

    jfNoSource,                                     ///< The saved import Name names no source.
    jfSourceGone,                                   ///< The saved import Name names Value, which is not there.

    // --- The plan cannot be one. Raised as EJobRefused. ---
    jfNoColumnMatches,                              ///< None of the columns Names has the name of a field, of Fields.
    jfNoColumns,                                    ///< There is no column to import.
    jfBadMapLine,                                   ///< Value is no pair of a field and a column.
    jfNoSuchField,                                  ///< Value, of line Name or of the keys, is none of Fields.
    jfFieldTwice,                                   ///< Line Name: the field Value has a column already.
    jfFieldReadOnly,                                ///< Line Name: the field Value is computed by the database.
    jfFieldUnnameable,                              ///< Line Name: the name of field Value cannot stand in a mapping.
    jfNoSuchColumn,                                 ///< Value is no column of kind Was and would be none in any row.
    jfKeysMissing,                                  ///< Mode Number finds records by keys, and the table has no primary key.
    jfKeyNotMapped,                                 ///< The key field Value gets no column.
    jfSameSeparators,                               ///< Decimal and thousand separator are the same, Character.
    jfDateOrder,                                    ///< Dates in the order Value cannot be read.
    jfTableMissing,                                 ///< The destination's table has to be said: Names.
    jfSameFile,                                     ///< Source and destination are the same, Name.
    jfNotThousands,                                 ///< Value, at Place, has Character where no thousands end.
    jfColumnGone,                                   ///< The column that was called Value when saved, for field Was, is not
                                                    ///< among those of row Number. Unit
    jfCodePage,                                     ///< Value, for setting Name of TJobFormats, is no code page that is known.

    // --- How the source was read, told before the run. ---
    jfDelimiter,                                    ///< Character delimits values, as row Number has it.
    jfSheet,                                        ///< Sheet Number of Count, Value; Given when it was asked for.
    jfOnlyTable,                                    ///< Table Value, the only one.
    jfForeignText,                                  ///< The table does not name the code page of its text.
    jfClassicRows,                                  ///< Read classic, all records are imported, whatever rows were asked for.
    jfClassicCount,                                 ///< Read classic, rows only say how many records are taken.
    jfClassicCells,                                 ///< Read classic, cells go to mappings in their order.
    jfLooksLikeHeader,                              ///< Row Number, which is imported, looks like a header. Unit
    jfSaved,                                        ///< Settings are those of file Value, which names the source Was.
    jfMapsItself,                                   ///< It has no mappings: the component joins columns and fields.
    jfColumnMoved,                                  ///< The column called Value is now Name; it was Was when saved.

    // --- What was left out or is odd, told after looking or after the run. ---
    jfUnreadable,                                   ///< Count values cannot be read; Value is why, of the first.
    jfFewerValues,                                  ///< Count rows, from row Number on, hold fewer values than row Limit.
    jfMoreValues,                                   ///< The same for more; Given when row Limit is a header.
    jfRowsBeyond,                                   ///< Values go down to row Count, Limit rows are read.
    jfColumnsBeyond,                                ///< The same for columns.
    jfCellsBeyond,                                  ///< Count values stand right of the last column that can be read.
    jfSeveralTables                                 ///< Rows of Count tables were read one after the other.
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
