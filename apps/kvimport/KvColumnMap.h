// KvColumnMap - decides which column of the source goes into which field of the destination, and says
// of each of them what becomes of it.
#pragma once

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

/// A field and a column, as the user spells them.
struct TMapPair
{
    std::string Field, Column;
};

/// The parts of "FIELD=column", without blanks around them. Raises Exception when one is missing.
TMapPair SplitMapPair(const std::string& Line);

// All three want an open dataset and raise Exception when nothing maps.

/// Each column to the field of its name, without regard to case.
TColumnMap MapByName(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination);

/// The first column to the first field, and so on.
TColumnMap MapByPosition(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination);

/// Exactly the given lines "FIELD=column". Raises Exception for a line that is no such pair, names an unknown
/// field or one that an earlier line names, and what `Source` raises for a column.
TColumnMap MapAsGiven(const std::vector<std::string>& Lines, TSource& Source, const TDataSet& Destination);

/// True when most of `Values` are names of fields: a line of them is a header.
bool LooksLikeHeader(const std::vector<std::string>& Values, const TDataSet& Destination);

/// The engine's list of key fields, as the destination spells them. Raises Exception for a name that is
/// no field, and for a field that gets no column.
std::string KeyList(const std::vector<std::string>& Keys, const TColumnMap& Map, const TDataSet& Destination);

/// The names of all fields: "ID, CITY, AMOUNT".
std::string FieldNames(const TDataSet& Destination);

} // namespace kv
