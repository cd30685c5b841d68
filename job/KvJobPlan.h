// KvJobPlan - decides which column of the source goes into which field of the destination, and knows of each
// of them what becomes of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvJobSettings.h"
#include "KvJobSource.h"

namespace kv {

class TDataSet;

/// What becomes of a column, or of a name that is none.
enum TJobFate {
    jcMapped,
    /// No column but a constant: every record gets this text.
    jcConstant,
    /// Mapped, but the rows that were looked at have no such column.
    jcMissing,
    jcBlank,                                        ///< Mapped, but the column holds no values.
    jcByOrder,                                      ///< Mapped; cells go to the mappings in their order.
    jcNoTitle,                                      ///< Not imported: it has no name to find a field by.
    jcNoField,                                      ///< Not imported: no field has its name.
    jcTitleTwice,                                   ///< Not imported: a column before it has that name.
    jcFieldSet,                                     ///< Not imported: its field gets a constant.
    jcReadOnly,                                     ///< Not imported: its field is computed by the database.
    /// Not imported: the name of its field cannot stand in a mapping.
    jcUnnameable,
    /// Not imported: mappings know no names with blanks at their ends.
    jcUnnameableColumn,
    jcNoMoreFields,                                 ///< Not imported: the table has no more fields.
    jcNotMapped                                     ///< Not imported: no line names it.
};

struct TJobColumnFate
{
    TKvISourceColumn Column;
    std::string Field;                              ///< The field that it goes into, UTF-8; empty for none.
    TJobFate Fate = jcMapped;
    bool ByTitle = false;                           ///< It was found by what the source calls it.
};

/// What a field gets instead of a column.
enum TJobFieldFate {
    jdNothing,
    jdRequired,                                     ///< Nothing, and new records must have a value.
    jdDefault,                                      ///< The default of the database.
    jdComputed                                      ///< It is computed by the database.
};

struct TJobFieldWithout
{
    std::string Field;                              ///< UTF-8.
    TJobFieldFate Fate = jdNothing;
};

struct TJobPlan
{
    /// For the component, in the process's code page: "ID=Field1".
    std::vector<std::string> Lines = {};
    /// In the order of the source or of the lines, constants last; those with a field have one of Lines each.
    std::vector<TJobColumnFate> Columns = {};
    std::vector<TJobFieldWithout> FieldsWithout = {}; ///< In the order of the destination.
    /// Fields by which records are found, UTF-8, as the table spells them.
    std::vector<std::string> Keys = {};
};

/// A field and a column, as the user spells them.
struct TJobMapPair
{
    std::string Field, Column;
};

/// The parts of "FIELD=column", without blanks around them; the field is one of `Destination`, if there is
/// one whose name holds "=". Raises EJobRefused when a part is missing.
TJobMapPair SplitMapLine(const std::string& Line, const TDataSet* Destination = nullptr);

/// Joins columns and fields as `Settings` has it, and settles the keys. `Destination` is open. Raises
/// EJobRefused where nothing maps, a line or a key names what is not there, or a record could not be looked
/// for by all keys. A source that maps itself is asked how.
TJobPlan MakePlan(const TJobSource& Source, TDataSet& Destination, const TJobPlanSettings& Settings);
/// The same without a destination: by lines only, and fields are believed.
TJobPlan MakePlanAlone(const TJobSource& Source, const TJobPlanSettings& Settings);

/// Gives the component what the plan says: mappings, keys and mode.
void TakePlan(TKvImportBaseComponent& Component, const TJobPlan& Plan, TImportMode Mode);

/// True when most of `Values` are names of fields: a row of them is a header.
bool LooksLikeHeader(const std::vector<std::string>& Values, const TDataSet& Destination);

} // namespace kv
