// KvColumnMap - decides which column of the source goes into which field of the destination, and says
// of each of them what becomes of it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KvSource.h"

namespace kv {

class TDataSet;

/// What becomes of a column.
struct TColumnFate
{
    TSourceColumn Column;
    std::string Field;                              ///< The field that it goes into; empty for none.
    std::string Remark;                             ///< Why it goes into none, or what is odd about it.
};

/// A field that gets no column.
struct TFieldFate
{
    std::string Field;
    std::string Remark;                             ///< What it gets instead.
};

struct TColumnMap
{
    std::vector<std::string> Lines;                 ///< For the component: "ID=Field1".
    std::vector<TColumnFate> Columns;               ///< In the order of the source, then constants.
    std::vector<TFieldFate> FieldsWithout;          ///< In the order of the destination.
};

// All three want an open dataset and raise Exception when nothing maps.

/// Each column to the field of its name, without regard to case.
TColumnMap MapByName(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination);

/// The first column to the first field, and so on.
TColumnMap MapByPosition(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination);

/// What is to be said of a mapping to `Source`, which is none of `Columns`.
std::string RemarkOnConstant(const std::string& Source, const std::vector<TSourceColumn>& Columns);

/// Exactly the given lines "FIELD=column". Raises Exception for a line that has no such form, names an
/// unknown field or one that an earlier line names, and what `RemarkOnStranger` raises for a source that
/// is none of `Columns`.
TColumnMap MapAsGiven(const std::vector<std::string>& Lines, const std::vector<TSourceColumn>& Columns,
                      const TDataSet& Destination,
                      const std::function<std::string(const std::string& Source)>& RemarkOnStranger);

/// True when most of `Values` are names of fields: a line of them is a header.
bool LooksLikeHeader(const std::vector<std::string>& Values, const TDataSet& Destination);

/// The engine's list of key fields, as the destination spells them. Raises Exception for a name that is
/// no field, and for a field that gets no column.
std::string KeyList(const std::vector<std::string>& Keys, const TColumnMap& Map, const TDataSet& Destination);

/// The names of all fields: "ID, CITY, AMOUNT".
std::string FieldNames(const TDataSet& Destination);

} // namespace kv
