// KvSqliteType - what a column's declared type means: SQLite keeps the words and obeys only their affinity.
#pragma once

#include <string_view>

#include "KvField.h"

namespace kv {

/// What SQLite makes of a value that is stored in a column ("Datatypes In SQLite", 3).
enum TSQLiteAffinity {
    saBlob,                                         ///< Nothing.
    saText,                                         ///< Numbers become text.
    saNumeric,                                      ///< Text that reads as a number becomes one.
    saInteger,                                      ///< As saNumeric.
    saReal                                          ///< As saNumeric; integers become floating point.
};

inline bool IsNumericAffinity(TSQLiteAffinity Affinity) { return Affinity >= saNumeric; }

struct TSQLiteType
{
    TFieldType Field = ftVariant;
    int Size = 0;                                   ///< As TFieldDef::Size.
    TSQLiteAffinity Affinity = saBlob;
    int Precision = 0, Scale = 0;                   ///< As TFieldDef has them.
};

/// The meaning of a type as it was declared: "VARCHAR(20)", "double precision", "".
TSQLiteType ReadDeclaredType(std::string_view Declared);

/// The same for a column of a STRICT table, where ANY keeps every value as it is.
TSQLiteType ReadStrictType(std::string_view Declared);

/// The word that declares a column of that affinity.
std::string_view AffinityWord(TSQLiteAffinity Affinity);

} // namespace kv
